10 REM String building and substrings: a 500-character string built by
20 REM concatenation, then cut into pieces and measured, 12,000 times
30 N=0
40 FOR K=1 TO 12000
50 B$=""
60 FOR I=1 TO 500
70 B$=B$+CHR$(65+(I+K) MOD 26)
80 NEXT I
90 FOR I=1 TO 490
100 C$=B$[I,I+9]
110 N=N+NUM(C$[5])+LEN(LEFT$(C$,3)+RIGHT$(C$,I MOD 5))
120 NEXT I
130 N=N MOD 100000
140 NEXT K
150 PRINT N
