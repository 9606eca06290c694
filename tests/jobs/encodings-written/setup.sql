create table words (word text);
insert into words values ('přý'), ('€');
