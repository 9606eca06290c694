create table customer (id integer primary key, name varchar(40), city varchar(40), credit decimal(9, 2));
insert into customer values
    (1, 'Ada Keller', 'Zürich', 1200.5),
    (2, 'Søren "Sam" Dahl', null, 0),
    (3, 'Miguel Ortega', 'A Coruña', null);
