create table "customer" (
 "id" integer not null,
 "name" varchar(40) not null,
 "country" char(2) default 'CH',
 "rebate" decimal(5,2) default 0,
 "since" date,
 "note" text);
create table "article" (
 "number" varchar(12) not null,
 "price" double not null,
 "stock" integer default -1,
 "changed" timestamp);
create table "keyword" (
 "word" text);
