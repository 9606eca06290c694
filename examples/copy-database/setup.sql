create table customer (id integer primary key, name varchar(40) not null, joined date, photo blob);
insert into customer values (1, 'Müller & Söhne', '2024-02-29', x'ff00'), (2, 'O''Brien''s', null, null);
create table "order line" (order_no int, article varchar(20), amount decimal(9,2));
insert into "order line" values (1, 'tea, black', 4.5), (1, '', 12), (2, null, -7.25);
create table remark (customer int, note text);
