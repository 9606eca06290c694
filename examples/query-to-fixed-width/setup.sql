create table article (number varchar(8), title varchar(30), price decimal(8, 2), note varchar(20));
insert into article values
    ('A-100', 'Lamp', 24.90, null),
    ('A-101', 'Desk lamp, long arm', 119.00, 'new'),
    ('B-7', 'Bulb', 1.50, 'sold in packs of 10');
-- A fixed-width line has no separators. The view puts a blank after each value, and sets the price
-- to the right.
create view price_list as
select number || ' ' as "number", title || ' ' as "title",
       printf('%8.2f ', price) as "   price", note
from article;
