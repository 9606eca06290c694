insert into "my shop"."orders"("id","price","name") values (7,0.5,'a') go
insert into "my shop"."orders"("id","price","name") values ('1); delete from t; --',1e5,'''') go
insert into "my shop"."orders"("id","price","name") values ('007','NaN',E'\\') go
