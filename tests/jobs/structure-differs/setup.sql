create table two (a, b);
create table three (a, b, c);
insert into three values (1, 2, 3);
