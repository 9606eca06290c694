-- old
create table "t" (
 id integer null)
