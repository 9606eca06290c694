insert into `shop`.`my orders` values (1,'O''Brien',5),
   (2,'',NULL),
   (3,'''''',0);
insert into `shop`.`my orders` values (4,'NULL',-7),
   (5,'Zoë, a/b',3.5);
