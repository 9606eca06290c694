insert into "first"("a","b") values (1,'x'),
   (2,'é');
insert into "first"("a","b") values (3,NULL);
