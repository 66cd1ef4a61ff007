10 COM N,S$,A(100),R
20 REM 100 chains to a missing file, then 2,000 chains that count in COM
30 C=0
40 FOR I=1 TO 100
50 CHAIN R,"chain/nothere.bas"
60 IF R=1015 THEN C=C+1
70 NEXT I
80 PRINT C;"CHAINS FAILED AS THEY SHOULD"
90 N=0
100 S$=""
110 CHAIN R,"chain/many.bas"
