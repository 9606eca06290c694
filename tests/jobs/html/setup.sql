create table units as select char(1, 9, 13, 10, 127) as plain, char(128, 233) as short, char(4095, 4096, 65533) as long, char(128512) as pair, '&amp;"' as marked;
