10 REM Float arithmetic: a polynomial and two divisions per pass, summed by rows, six times
15 FOR R=1 TO 6
20 T=0
30 FOR I=1 TO 6000
40 S=0
50 FOR J=1 TO 1000
60 X=J/1000+I/4000
70 S=S+X*X*0.5-X/3+1/(X+1)
80 NEXT J
90 T=T+S
100 NEXT I
105 NEXT R
110 PRINT INT(T/1000+0.5)
