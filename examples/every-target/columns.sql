-- A row for each column: table, column, type name, size, digits, nullable, default. The size stands
-- in the type's name here.
select 'article', name, type, null, null, case when "notnull" then '0' else '1' end, dflt_value
from pragma_table_info('article')
order by cid
