insert into "t"() values ();
insert into "t"() values ();
