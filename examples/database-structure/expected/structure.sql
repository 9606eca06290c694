create table "customer" (
 id INTEGER  default NULL not null,
 name varchar(40)  default NULL not null,
 country char(2)  default CH null,
 rebate decimal(5,2)  default 0 null,
 since date  default NULL null,
 note TEXT  default NULL null);
create table "article" (
 number varchar(12)  default NULL not null,
 price double  default NULL not null,
 stock INTEGER  default -1 null,
 changed timestamp  default current_timestamp null);
create table "keyword" (
 word   default NULL null);
