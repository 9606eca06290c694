create table sale (
  id integer primary key,
  placed date not null,
  customer text not null,
  total numeric(9,2),
  remark text
);
insert into sale values
  (1, '2024-03-29', 'Müller & Söhne', 120.50, null),
  (2, '2024-03-30', 'O''Brien''s', null, 'price to follow'),
  (3, '2024-03-31', 'Dahl', 0.75, '');
