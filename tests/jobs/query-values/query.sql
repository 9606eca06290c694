
  select id, note
from goods where note is not null 	

