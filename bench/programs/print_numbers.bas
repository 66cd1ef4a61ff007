10 REM PRINT of 500,000 numbers ten times, written to a pipe
15 FOR R=1 TO 10
20 FOR I=1 TO 500000
30 PRINT I
40 NEXT I
50 NEXT R
