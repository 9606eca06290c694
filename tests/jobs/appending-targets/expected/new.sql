insert into "t" values ('è')
insert into "t" values ('è')
