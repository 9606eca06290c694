insert into "t" values (1,aaa,'x\ty	z',p; q; r,'xyxyx')
insert into "t" values (NULL,Aa,'NULL',;,'xyx')
