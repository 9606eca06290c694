create table first (a varchar(9), b varchar(9));
insert into first values ('xx', null);
create table second (a varchar(9), b varchar(9), c varchar(9));
insert into second values ('xx', null, 'z'), ('y', 'x', 'zz');
