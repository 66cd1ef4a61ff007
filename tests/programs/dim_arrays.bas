10 DIM A[3],M(2,3),S$(2)[4],T$[2]
20 A(3)=7
30 M(2,3)=5
40 S$(2)="long text"
50 T$="longer than two"
60 PRINT A(3);M(2,3);S$(2);" ";T$
70 M(2,4)=1
