10 REM Formats that would run long: replicated groups repeat what a round
20 REM that takes no value wrote, and nesting needs no stack of its own
30 PRINT USING "255(255(255(d)))";1,2,3
40 PRINT USING "255(255(255(255(q,d))))";1
50 PRINT USING "'91,255(255(255("'34'34"))),'93";1
60 F$=""
70 FOR I=1 TO 200
80 F$=F$+"1("
90 NEXT I
100 PRINT USING F$+"d,'124";1,2,3
110 F$="((((("
120 FOR I=1 TO 9
130 F$=F$+F$
140 NEXT I
150 PRINT LEN(F$)
160 PRINT USING "2d,"+F$;1
