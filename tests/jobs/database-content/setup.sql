create table first (a integer, b varchar(10));
insert into first values (1, 'x'), (2, null);
create table "odd.na""me (x)" (ü text);
insert into "odd.na""me (x)" values ('é');
create table Empty (only_column integer);
create view seen as select * from first;
