create table player (name varchar(20), score integer);
insert into player values ('Ines', 41), ('Bo', 67), ('Carol', 52);
