insert into "my orders"("id","qty") values (1,5),
   (2,NULL),
   (3,0)
insert into "my orders"("id","qty") values (4,-7),
   (5,3.5)
