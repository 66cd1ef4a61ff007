10 REM String comparison and searching: 2,000 words compared pairwise and
20 REM looked for in a text made of some of them, six times
30 DIM W$(2000)
40 FOR I=1 TO 2000
50 W$(I)=CHR$(65+(I*7) MOD 26)+CHR$(65+(I*11) MOD 26)+CHR$(65+(I*13) MOD 19)
60 NEXT I
70 T$=""
80 FOR I=1 TO 2000 STEP 5
90 T$=T$+W$(I)
100 NEXT I
105 FOR R=1 TO 6
110 L=0
120 E=0
130 F=0
140 FOR I=1 TO 2000
150 FOR J=1 TO 2000
160 IF W$(I)<W$(J) THEN L=L+1
170 IF W$(I)=W$(J) THEN E=E+1
180 NEXT J
190 F=F+POS(T$,W$(I))
200 NEXT I
205 NEXT R
210 PRINT L MOD 100000;E;F MOD 100000
