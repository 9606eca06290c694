create table words as select 'ab' as a, 'gone' as b, 'c' as c union all select 'x', 'gone', 'cdefg';
