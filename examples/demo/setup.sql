-- Five thousand orders, the same ones every time.
create table orders (
  id integer primary key, placed date, customer varchar(40), city varchar(30),
  total decimal(10,2), express boolean, remark varchar(60)
);
with recursive n(i) as (select 1 union all select i + 1 from n where i < 5000)
insert into orders
select i,
       date('2025-01-01', '+' || (i * 7 % 365) || ' days'),
       case i % 6 when 0 then 'Zoë Müller' when 1 then 'O''Neill & Sons' when 2 then 'Łukasz Nowak'
                  when 3 then 'Ann Smith' when 4 then 'José García' else 'Kim' end || ' ' || (i % 97),
       case i % 5 when 0 then 'Köln' when 1 then 'Porto' when 2 then 'Malmö' when 3 then 'Leeds'
                  else 'Brno' end,
       round((i * 7919 % 100000) / 100.0, 2),
       i % 3 = 0,
       case when i % 4 = 0 then null when i % 4 = 1 then '' else 'call; then "ring" twice' end
from n;
