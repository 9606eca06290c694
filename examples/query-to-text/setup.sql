create table customer (
    id integer primary key,
    name varchar(40) not null,
    country char(2) not null,
    joined date,
    credit decimal(10, 2)
);
insert into customer values
    (1, 'Ada Keller', 'CH', '2019-04-02', 1200.50),
    (2, 'Søren Dahl', 'DK', '2020-11-30', null),
    (3, 'Łucja Nowak', 'PL', null, 0),
    (4, 'Miguel "Mike" Ortega', 'ES', '2023-01-15', 89.99);
