create table "orders" (
 größe text  default klein null)
