create table "plain" (
 id INTEGER  default NULL not null,
 name varchar(40)  default 7 null,
 price numeric(9,2)  default NULL not null);
create table "a_b" (
 x TEXT  default NULL null);
create table "acb" (
 y TEXT  default NULL null);
