create table customer (
    "id" integer not null,
    "name" varchar(60) not null,
    "phone" varchar(20) default 'none' null,
    "visits" integer default 7 not null,
    "balance" numeric(12,2) null,
    "Größe" float null,
    "city" varchar(40) null,
    "note" varchar(200) null,
    "story" varchar(8000) null);
insert into customer values
    (1, 'O''Brien & Sons', '007', 3, 12.5, 1.75, 'Łódź', 'two' || char(13, 10) || 'lines', 'short'),
    (2, 'The "Red" Lion', '5550100', 0, 0, 0.5, 'Zürich', 'three' || char(10) || '' || char(10) || 'lines', null),
    (3, '<b>Bold</b> & Co.', null, -14, -7, -2.5, 'São Paulo', null, ''),
    (4, '''''; drop table x; --', '', 1200, 1234567.89, 0.0, 'Århus', '', 'null'),
    (5, '50% off, $NAME$ [a] ''b''', '+48 22', 1, null, null, null, 'a' || char(9) || 'tab', 'NULL'),
    (6, 'Jones; Smith: #1', '0.5', 2, 0.01, 100.0, 'Gdańsk', '&amp; and &lt; as they are', replace(substr(quote(zeroblob(132)), 3, 263), '0', 'Zażółć gęślą jaźń. ') || 'End'),
    (7, '-', '12a', 1000000, 1200, 3.25, 'Cañon / Île', '"C:\new" {1} \o/', ']]> <!-- x --> ?>'),
    (8, 'Smile 😀', null, 5, null, null, '🏙 Łódź', '👩‍👩‍👧', null);
