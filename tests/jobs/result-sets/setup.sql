create table first (a integer, b varchar(9));
insert into first values (1, 'x'), (2, 'é'), (3, null);
create table second (c varchar(9));
insert into second values ('4');
create table empty (d);
create table third (e, f, g);
insert into third values (5, 6, 7), (8, 9, 10);
