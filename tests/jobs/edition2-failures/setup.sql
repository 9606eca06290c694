create table one (a integer primary key); insert into one values (2);
create table two (b text); insert into two values ('x'), ('y');
