create table a(id integer, note varchar(20));
insert into a values(1,null),(22,'abc');
create table b(longer_name varchar(9), x varchar(3));
insert into b values('zz','yy');
