10 REM Monthly statement: codes, names and amounts through IMAGE lines
20 IMAGE "Code   Customer            Amount"
30 IMAGE "-----  ------------  ------------"
40 IMAGE 05d,2x,-12.12a,2x,12.2d
50 IMAGE 21x,"------------"
60 TOTAL: IMAGE "Total",16x,12.2d
70 IMAGE "Count",16x,4d,/,"Average",14x,12.2d
80 PRINT USING 20
90 PRINT USING 30
100 T=0
110 N=0
120 READ C,N$,A
130 IF C=0 THEN 180
140 PRINT USING 40;C,N$,A
150 T=T+A
160 N=N+1
170 GOTO 120
180 PRINT USING 50
190 PRINT USING TOTAL;T
200 PRINT USING 70;N,T/N
201 REM The same statement again, its format read afresh each time
202 FOR I=1 TO 3
203 READ F$
204 PRINT USING F$;I*2
205 NEXT I
210 DATA 42,"Anders",1250.5,7,"Baker & Sons",-310.25
220 DATA 1234,"Cooperative Dairy Ltd",98765.43,3,"Dahl",0.004
230 DATA 99999,"Eng",-0.5,0,"",0
235 DATA "3d","5d","2d"
240 END
