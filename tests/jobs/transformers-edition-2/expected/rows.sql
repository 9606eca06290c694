insert into "first"("a","new") values (xx,NULL);
insert into "second"("a","new","c") values (xx,NULL,'z');
insert into "second"("a","new","c") values (y,'x','zz');
