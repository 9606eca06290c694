select

1,
'two'
