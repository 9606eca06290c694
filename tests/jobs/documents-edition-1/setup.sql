create table t (é text, n integer); insert into t values ('ü'||char(1), null);
