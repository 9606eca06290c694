create table words as
    select 'x' as gone, 'Łódź' as "Größe", '😀' as smile, 'a' || char(13) || char(10) || 'b' as "two
lines", null as none, '１２' as "３";
