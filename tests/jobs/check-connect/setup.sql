create table source (id integer primary key, name varchar(20), price decimal(9,2));
create table target (id integer primary key, name varchar(20));
