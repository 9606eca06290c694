insert into "people"("id","name","note") values (1,'Ada Keller','likes C:\temp\n tea');
insert into "people"("id","name","note") values (2,'Søren Dahl','semi
colon');
insert into "people"("id","name","note") values (3,'Łucja Nowak','a
b
c');
