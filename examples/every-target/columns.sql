-- A row for each column: table, column, type name, size, digits, nullable, default. The names are
-- quoted here, because the script takes them as they are.
select 'article', '"' || replace(name, '"', '""') || '"',
       case when instr(type, '(') then substr(type, 1, instr(type, '(') - 1) else type end,
       case type when 'numeric(9, 2)' then '9' when 'integer' then null
                 else rtrim(substr(type, instr(type, '(') + 1), ')') end,
       case type when 'numeric(9, 2)' then '2' end,
       case when "notnull" then '0' else '1' end,
       dflt_value
from pragma_table_info('article')
order by cid
