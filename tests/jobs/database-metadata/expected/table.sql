create table "main"."a_b" (
 x TEXT  default NULL null)
