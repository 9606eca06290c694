insert into "first"("a","b") values ('xx',NULL)
insert into "second"("a","b","c") values ('xx',NULL,'x')
insert into "second"("a","b","c") values ('y','x','xx')
