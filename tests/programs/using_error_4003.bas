10 REM The format error stops the line where it is found
20 IMAGE "before",2(3d),?,"after"
30 PRINT USING 20;1,2,3
40 PRINT "not reached"
