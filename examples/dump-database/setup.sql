create table customer (id integer not null primary key, name text not null, city text);
insert into customer values (1, 'Müller & Söhne', 'Zürich'), (2, 'O''Brien''s', null);
create table "order line" (order_no integer, line integer, article text, amount decimal(9,2));
insert into "order line" values (1, 1, 'tea, black', 4.5), (1, 2, 'cups', 12), (2, 1, 'saucers', 7.25);
create table remark (customer integer, note text);
create view customers_of_zurich as select name from customer where city = 'Zürich';
