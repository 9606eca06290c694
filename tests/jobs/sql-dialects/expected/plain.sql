insert into dbo."o'clock.x ]`"("a"b]`") values (1);
insert into dbo."o'clock.x ]`"("a"b]`") values (2);
insert into dbo."o'clock.x ]`"("a"b]`") values (1); delete from t; --);
