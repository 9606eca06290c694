select article, count(*) as sales, sum(amount) as amount
from sale
where region = '$REGION$'
group by article
order by article
