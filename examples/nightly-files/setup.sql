create table sale (id integer primary key, article varchar(40), amount numeric(9, 2));
insert into sale values (1, 'Tea', 12.5), (2, 'Crème brûlée', 4.25), (3, 'Coffee', 8);
