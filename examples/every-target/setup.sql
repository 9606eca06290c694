create table article (
    "No" integer primary key,
    "The ""name""" varchar(60) not null,
    "Größe" varchar(20),
    "Price" numeric(9, 2),
    "note" varchar(100)
);
insert into article values
    (1, 'O''Brien''s "best" tea', 'groß', 12.5, 'two' || char(13) || char(10) || 'lines'),
    (2, 'Fish & <b>chips</b>', 'Łódź/été', 0, null),
    (3, 'Smile 😀', null, -7, ''),
    (4, '100% {pure} \o/', '007', 1200, 'a' || char(9) || 'tab');
