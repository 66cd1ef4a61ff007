10 COM N,S$,A(3),B$(2),T$[10],M(2,2)
20 REM Ping starts a rally with Pong; COM variables of every kind go back and forth
30 N=0
40 S$="PING"
50 FOR I=1 TO 3
60 A(I)=I*10
70 NEXT I
80 B$(1)="ONE"
90 B$(2)="TWO"
100 T$="T"
110 M(1,1)=1
120 M(2,2)=2
LOOP: PRINT "PING";N;S$;A(1);A(2);A(3);B$(1);B$(2);T$;M(1,1);M(2,2)
140 N=N+1
150 IF N<4 THEN CHAIN "chain/pong.bas"
160 PRINT "RALLY OVER"
170 CHAIN R,"chain/nothere.bas"
180 PRINT "MISSING FILE";R
190 CHAIN R,"chain/bad.bas"
200 PRINT "BAD LINES";R
210 CHAIN R,"chain/pong.bas",NOSUCH
220 PRINT "NO SUCH START";R
225 CHAIN R,"chain/pong.bas",1
226 PRINT "NO LINE 1";R
230 CHAIN R,"chain/mismatch.bas"
240 PRINT "COM MISMATCH";R
250 CHAIN R,"chain/unlinked.bas"
260 PRINT "DOES NOT LINK";R
270 CHAIN R,"chain/comlate.bas"
280 PRINT "COM NOT FIRST";R
290 PRINT "STILL PING:";N;S$
300 CHAIN "chain/bad.bas"
