10 REM Serial PRINT # of small records: 200,000 entries of a number and a short name,
20 REM two to a record of 8 words, then read back once to check them
30 FILES *
40 PURGE R,"write.dat"
50 CREATE R,"write.dat",100000,8
60 ASSIGN "write.dat",1,R
70 FOR I=1 TO 200000
80 PRINT #1;I MOD 1000,"AB"
90 NEXT I
100 READ #1,1
110 S=0
120 FOR I=1 TO 200000
130 READ #1;A,A$
140 S=S+A+LEN(A$)
150 IF S>100000 THEN S=S-100000
160 NEXT I
170 PRINT "WRITTEN";S;"IN RECORD";REC(1)
180 ASSIGN *,1,R
190 PURGE R,"write.dat"
