insert into dbo.Orders("id","name","qty") values (1,'O''Brien',5),
   (2,'',NULL);
insert into dbo.Orders("id","name","qty") values (3,'''''',0),
   (4,'NULL',-7);
insert into dbo.Orders("id","name","qty") values (5,'Zoë, a/b',3.5);
