select 'customer' as name, count(*) as "rows" from customer
union all select 'order line', count(*) from "order line"
union all select 'remark', count(*) from remark
