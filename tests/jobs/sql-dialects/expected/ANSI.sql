create table "o'clock.x ]`" (
 "a""b]`" integer default -7 not null,
 "order" clob default 'it''s
\ "7"',
 "price" decimal(9,2),
 "wide" decimal(30,10),
 "loose" double precision,
 "yes" boolean default true not null,
 "day" date,
 "at" timestamp,
 "raw" blob,
 "bin" varbinary(16),
 "name" varchar(40),
 "any_length" clob);
insert into "o'clock.x ]`"("a""b]`","order","price","wide","loose","yes","day","at","raw","bin","name","any_length") values (1,'O''Brien''s \ "tea"',12.5,0.5,1.0e+300,true,date '2024-02-29',timestamp '2024-02-29 23:59:58.125',x'00270AFF',x'','',NULL),
   (2,U&'a\000D\000A\\13.\000A',-7,NULL,3,false,'tomorrow','1999-12-31',x'6E6F206279746573',NULL,'Łódź 😀',U&'\000D');
insert into "o'clock.x ]`"("a""b]`","order","price","wide","loose","yes","day","at","raw","bin","name","any_length") values ('1); delete from t; --',NULL,'12,5',1234567890123456,0.5,'yes',NULL,NULL,NULL,NULL,'','x');
