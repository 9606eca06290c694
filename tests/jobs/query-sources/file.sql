
	 select 'file', 'a  b'	
 
