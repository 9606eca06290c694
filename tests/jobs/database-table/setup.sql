create table source (id integer, name varchar(40), price numeric(9,2));
insert into source values (1, 'O''Brien', 1.5), (2, null, null), (3, '', -7), (4, 'é' || char(13) || char(10) || '"x"', 0);
create table same (id integer primary key, name varchar(40), price numeric(9,2));
create table "two words" (a, b, c);
create table narrow (a, b);
create table strict (id integer primary key, name varchar(40) not null, price);
