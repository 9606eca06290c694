create table `o'clock.x ]``` (
 `a"b]``` int default -7 not null,
 `order` longtext default ('it''s\n\\ "7"') null,
 `price` decimal(9,2) null,
 `wide` decimal(30,10) null,
 `loose` double null,
 `yes` boolean default 1 not null,
 `day` date null,
 `at` datetime(6) null,
 `raw` longblob null,
 `bin` varbinary(16) null,
 `name` varchar(40) null,
 `any_length` longtext null);
insert into `o'clock.x ]```(`a"b]```,`order`,`price`,`wide`,`loose`,`yes`,`day`,`at`,`raw`,`bin`,`name`,`any_length`) values (1,'O''Brien''s \\ "tea"',12.5,0.5,1.0e+300,1,'2024-02-29','2024-02-29 23:59:58.125',x'00270AFF',x'','',NULL),
   (2,'a\r\n\\13.\n',-7,NULL,3,0,'tomorrow','1999-12-31',x'6E6F206279746573',NULL,'Łódź 😀','\r');
insert into `o'clock.x ]```(`a"b]```,`order`,`price`,`wide`,`loose`,`yes`,`day`,`at`,`raw`,`bin`,`name`,`any_length`) values ('1); delete from t; --',NULL,'12,5',1234567890123456,0.5,'yes',NULL,NULL,NULL,NULL,'','x');
