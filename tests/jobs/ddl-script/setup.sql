create table orders as select 'orders' as t, 'größe' as c, 'text' as type, 5 as size, null as digits, 1 as nullable, 'klein' as dflt;
