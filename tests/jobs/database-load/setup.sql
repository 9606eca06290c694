create table target (id integer primary key, Name varchar(20) not null, extra integer default 7,
    amount decimal(9,2), raw blob, check (Name <> 'bad'));
create table twins (a integer, "Ä" text, B text, b2 text);
create table source (ID integer, name text, Amount decimal(9,2), raw blob);
insert into source values (1, 'one', 1.5, x'00ff'), (2, '1); delete from target; --', null, null),
    (3, '', -0.25, x''), (4, 'żółć 😀' || char(13) || char(10) || '''', 7, x'41');
create table more as select ID, name, Amount, null as raw from source where ID > 2;
create table empty_one (k integer not null, "odd ""name" text);
