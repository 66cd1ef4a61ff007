10 REM 500,000 values through a numeric IMAGE, written to a pipe
20 IMAGE 10.2d
30 FOR I=1 TO 500000
40 PRINT USING 20;(I MOD 50000)/4
50 NEXT I
