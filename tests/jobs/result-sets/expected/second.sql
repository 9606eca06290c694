insert into "second"("c") values ('4');
