10 REM PRINT of 500,000 numbers, written to a pipe
20 FOR I=1 TO 500000
30 PRINT I
40 NEXT I
