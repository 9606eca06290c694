insert into "third"("e","f","g") values ('5','6','7'),
   ('8','9','10');
