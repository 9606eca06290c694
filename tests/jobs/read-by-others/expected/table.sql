create table "customer" (
 id INTEGER  default NULL not null,
 name varchar(60)  default NULL not null,
 phone varchar(20)  default none null,
 visits INTEGER  default 7 not null,
 balance numeric(12,2)  default NULL null,
 Größe float  default NULL null,
 city varchar(40)  default NULL null,
 note varchar(200)  default NULL null,
 story varchar(8000)  default NULL null);
