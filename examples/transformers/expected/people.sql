insert into "people"("id","name","note") values (1,'Ada Keller','likes C:\temp\n tea');
insert into "people"("id","name","note") values (2,'Søren Dahl',replace(replace('semi\13.\10.colon','\10.',char(10)),'\13.',char(13)));
insert into "people"("id","name","note") values (3,'Łucja Nowak',replace(replace('a\13.\10.b\13.\10.c','\10.',char(10)),'\13.',char(13)));
