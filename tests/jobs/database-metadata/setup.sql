create table plain (id integer not null primary key, name varchar(40) default 7, price numeric(9,2) not null);
create table "a_b" (x text);
create table "acb" (y text);
create view seen as select id from plain;
