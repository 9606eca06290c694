insert into "first"("a","b") values (1,'x')
insert into "first"("a","b") values (2,NULL)
insert into odd.na"me (x)("ü") values ('é')
