	REM tab
10 REM	x
20 REM a	b
30 REM ab	c
