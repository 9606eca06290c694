create table article (
    number varchar(8) primary key,
    name varchar(60) not null,
    price decimal(8, 2)
);
insert into article values
    ('0042', 'Tea, green', 12.50),
    ('0107', 'Crème "brûlée"', 4.25),
    ('2000', 'Voucher' || char(10) || 'for two', null);

create table sale (
    id integer primary key,
    sold timestamp not null,
    article varchar(8) not null,
    pieces integer not null,
    remark varchar(60)
);
insert into sale values
    (1, '2024-03-30 09:15:00', '0042', 2, 'said "again, please"'),
    (2, '2024-03-30 11:40:30', '2000', 1, null),
    (3, '2024-03-31 08:05:00', '0107', 12, '=1+1');
