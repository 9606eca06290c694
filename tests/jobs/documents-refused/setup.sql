create table odd (plain varchar(9), note varchar(9));
insert into odd values ('x', 'a' || char(1));
create table long (text varchar(40000));
insert into long values (replace(hex(zeroblob(16384)), '00', 'xx'));
create table bare ("a" varchar(9));
