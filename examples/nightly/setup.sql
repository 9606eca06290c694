create table sale (id integer primary key, region varchar(10), article varchar(20), amount integer);
insert into sale values
    (1, 'north', 'Lamp', 3),
    (2, 'south', 'Lamp', 1),
    (3, 'north', 'Bulb', 40),
    (4, 'north', 'Lamp', 2),
    (5, 'east', 'Desk', 1);
