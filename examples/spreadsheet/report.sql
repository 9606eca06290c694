-- Sales by day.
select date(sold) as day, sum(pieces) as pieces, sum(pieces * price) as total,
       group_concat(name, ', ') as articles
from (select s.*, a.* from sale s join article a on a.number = s.article order by s.id)
group by day
order by day
