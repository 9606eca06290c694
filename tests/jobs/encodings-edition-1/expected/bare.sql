insert into "t" values ('přý')
insert into "t" values ('€')
