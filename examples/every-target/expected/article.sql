insert into "article" values (1,'O''Brien''s "best" tea','groß',12.5,'two
lines'),
   (2,'Fish & <b>chips</b>','Łódź/été',0,NULL);
insert into "article" values (3,'Smile 😀',NULL,-7,''),
   (4,'100% {pure} \o/','007',1200,'a	tab');
