create table "o'clock.x ]`" (
 "a""b]`" integer default -7 not null,
 "order" text default (replace('it''s\10.\ "7"','\10.',char(10))),
 "price" decimal(9,2),
 "wide" text,
 "loose" numeric,
 "yes" boolean default 1 not null,
 "day" date,
 "at" timestamp,
 "raw" blob,
 "bin" varbinary(16),
 "name" varchar(40),
 "any_length" text);
insert into "o'clock.x ]`"("a""b]`","order","price","wide","loose","yes","day","at","raw","bin","name","any_length") values (1,'O''Brien''s \ "tea"',12.5,'0.5',1.0e+300,1,'2024-02-29','2024-02-29 23:59:58.125',x'00270AFF',x'','',NULL),
   (2,replace(replace('a\13.1.\10.\13.\10.','\10.',char(10)),'\13.1.',char(13)),-7,NULL,3,0,'tomorrow','1999-12-31',x'6E6F206279746573',NULL,'Łódź 😀',replace('\13.','\13.',char(13)));
insert into "o'clock.x ]`"("a""b]`","order","price","wide","loose","yes","day","at","raw","bin","name","any_length") values ('1); delete from t; --',NULL,'12,5','1234567890123456',0.5,'yes',NULL,NULL,NULL,NULL,'','x');
