create table "o'clock.x ]`" (
 "a""b]`" integer default -7 not null,
 "order" text default E'it''s\n\\ "7"',
 "price" numeric(9,2),
 "wide" numeric(30,10),
 "loose" numeric,
 "yes" boolean default true not null,
 "day" date,
 "at" timestamp,
 "raw" bytea,
 "bin" bytea,
 "name" varchar(40),
 "any_length" text);
insert into "o'clock.x ]`"("a""b]`","order","price","wide","loose","yes","day","at","raw","bin","name","any_length") values (1,E'O''Brien''s \\ "tea"',12.5,0.5,1.0e+300,true,'2024-02-29','2024-02-29 23:59:58.125',E'\\x00270AFF'::bytea,E'\\x'::bytea,'',NULL),
   (2,E'a\r\n\\13.\n',-7,NULL,3,false,'tomorrow','1999-12-31',E'\\x6E6F206279746573'::bytea,NULL,'Łódź 😀',E'\r');
insert into "o'clock.x ]`"("a""b]`","order","price","wide","loose","yes","day","at","raw","bin","name","any_length") values ('1); delete from t; --',NULL,'12,5',1234567890123456,0.5,'yes',NULL,NULL,NULL,NULL,'','x');
