insert into "first"("a","b") values ('xyxy',NULL)
insert into "second"("a","b","c") values ('xyxy',NULL)
insert into "second"("a","b","c") values ('y','xy')
