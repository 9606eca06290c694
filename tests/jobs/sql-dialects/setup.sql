create table "o'clock.x ]`" (
    "a""b]`" integer not null default -7,
    "order" text default 'it''s
\ "7"',
    price decimal(9,2),
    wide decimal(30,10),
    loose numeric,
    yes boolean not null default true,
    day date,
    at timestamp default current_timestamp,
    raw blob,
    bin varbinary(16),
    name varchar(40),
    any_length varchar);
insert into "o'clock.x ]`" values
    (1, 'O''Brien''s \ "tea"', 12.5, 0.5, 1e300, 1, '2024-02-29', '2024-02-29 23:59:58.125',
        x'00270aff', x'', '', null),
    (2, 'a' || char(13, 10) || '\13.' || char(10), -7, null, 3, 0, 'tomorrow', '1999-12-31',
        'no bytes', null, 'Łódź 😀', char(13)),
    ('1); delete from t; --', null, '12,5', '1234567890123456', .5, 'yes', null, null, null, null,
        '', 'x');
