-- Sales with keys that have gaps, as tables in use have.
create table sale (id integer primary key, region text, sold date, amount decimal(10,2), note text);
with recursive n(i) as (select 1 union all select i + 1 from n where i < 10000)
insert into sale
select i * 3 + i / 100 * 50, trim(substr('northsoutheast west ', i % 4 * 5 + 1, 5)),
       date('2024-01-01', '+' || (i % 366) || ' days'), i * 7919 % 100000 / 100.0,
       case i % 5 when 0 then null when 1 then '' when 2 then 'said "fine", twice' else 'note ' || i end
from n;
