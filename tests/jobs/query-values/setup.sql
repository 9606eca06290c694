create table goods(id integer, name varchar(30), price decimal(10,2), note text);
insert into goods values (1,'Zoë',1.5,null),(2,'',null,'line
break'),(3,'emoji 😀',-0.25,'x;y'),(4,'it''s "q"',1e6,'');
