drop table if exists sale;
create table sale (
  id integer primary key,
  placed date not null,
  customer varchar(40) not null,
  total decimal(9,2)
);
