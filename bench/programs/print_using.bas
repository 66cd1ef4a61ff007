10 REM PRINT USING of 500,000 values with two decimals ten times, written to a pipe
15 FOR R=1 TO 10
20 FOR I=1 TO 500000
30 PRINT USING "10.2d";(I MOD 50000)/4
40 NEXT I
50 NEXT R
