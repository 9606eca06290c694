create table [dbo].[orders] (
 [id] bigint not null,
 [name] nvarchar(40) default N'none' null,
 [note] nvarchar(max) default N'O''Brien' null,
 [code] nchar(3) default N'5' not null,
 [price] decimal(9,2) default 7.50 not null,
 [cash] decimal(9,2) null,
 [noted] datetime2 not null,
 [done] bit default 1 not null,
 [raw] varbinary(16) null,
 [story] nvarchar(max) default (replace(N'a\10.b' collate Latin1_General_BIN2,N'\10.',nchar(10))) null,
 [od]]d] nvarchar(max) null);
