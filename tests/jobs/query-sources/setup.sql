create table items as select 1 as id, 'žába' as name;
create table "two words" as select 2 as x;
