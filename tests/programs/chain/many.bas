10 COM N,S$,A(100),R
20 REM Chains to itself until N is 2,000; S$ and A keep growing on the way
25 IF N=0 THEN PRINT "A CHAIN THAT WORKS LEFT R =";R
30 N=N+1
40 IF N<=100 THEN S$=S$+"X"
50 A(N-INT((N-1)/100)*100)=N
60 IF N<2000 THEN CHAIN "chain/many.bas"
70 PRINT N;LEN(S$);A(1);A(100)
