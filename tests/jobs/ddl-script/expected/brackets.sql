create table "my.db"."Orders" (
 id integer not null) go
