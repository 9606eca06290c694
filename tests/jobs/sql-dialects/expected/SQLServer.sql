create table [o'clock.x ]]`] (
 [a"b]]`] int default -7 not null,
 [order] nvarchar(max) default (replace(N'it''s\10.\ "7"' collate Latin1_General_BIN2,N'\10.',nchar(10))) null,
 [price] decimal(9,2) null,
 [wide] decimal(30,10) null,
 [loose] float null,
 [yes] bit default 1 not null,
 [day] date null,
 [at] datetime2 null,
 [raw] varbinary(max) null,
 [bin] varbinary(16) null,
 [name] nvarchar(40) null,
 [any_length] nvarchar(max) null);
insert into [o'clock.x ]]`]([a"b]]`],[order],[price],[wide],[loose],[yes],[day],[at],[raw],[bin],[name],[any_length]) values (1,N'O''Brien''s \ "tea"',12.5,0.5,1.0e+300,1,N'20240229',N'2024-02-29T23:59:58.125',0x00270AFF,0x,N'',NULL),
   (2,replace(replace(N'a\13.1.\10.\13.\10.' collate Latin1_General_BIN2,N'\10.',nchar(10)),N'\13.1.',nchar(13)),-7,NULL,3,0,N'tomorrow',N'1999-12-31',0x6E6F206279746573,NULL,N'Łódź 😀',replace(N'\13.' collate Latin1_General_BIN2,N'\13.',nchar(13)));
insert into [o'clock.x ]]`]([a"b]]`],[order],[price],[wide],[loose],[yes],[day],[at],[raw],[bin],[name],[any_length]) values (N'1); delete from t; --',NULL,N'12,5',1234567890123456,0.5,N'yes',NULL,NULL,NULL,NULL,N'',N'x');
