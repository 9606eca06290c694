insert into "first"("a","b") values (1,'x'),
   (2,'é');
insert into "first"("a","b") values (3,NULL);
insert into "second"("c") values ('4');
insert into "third"("e","f","g") values ('5','6','7'),
   ('8','9','10');
