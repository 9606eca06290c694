insert into "t" values (),
   ();
