create table "Größe" ("größe" varchar(20), wert varchar(20));
insert into "Größe" values ('żółć 😀', 'żółw'), ('Ελλάδα, 日本語', null), ('é', 'à');
create table copy ("größe" varchar(20), wert varchar(20));
