create table "main"."o'clock.x ]`_copy" (
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
