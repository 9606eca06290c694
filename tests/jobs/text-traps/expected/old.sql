-- done
insert into "t"("a","b") values ('1','2');
