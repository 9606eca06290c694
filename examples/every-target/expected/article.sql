insert into "article"("No","The ""name""","Größe","Price","note") values (1,'O''Brien''s "best" tea','groß',12.5,replace(replace('two\13.\10.lines','\10.',char(10)),'\13.',char(13))),
   (2,'Fish & <b>chips</b>','Łódź/été',0,NULL);
insert into "article"("No","The ""name""","Größe","Price","note") values (3,'Smile 😀',NULL,-7,''),
   (4,'100% {pure} \o/','007',1200,'a	tab');
