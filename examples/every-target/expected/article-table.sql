create table "article" (
 "No" integer,
 "The ""name""" varchar(60) not null,
 "Größe" varchar(20),
 "Price" decimal(9,2),
 "note" varchar(100));
