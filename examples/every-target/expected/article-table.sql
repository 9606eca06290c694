create table "article" (
 "No" INTEGER null,
 "The ""name""" varchar(60) not null,
 "Größe" varchar(20) null,
 "Price" numeric(9,2) null,
 "note" varchar(100) null);
