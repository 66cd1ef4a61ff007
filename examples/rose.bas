10 REM Mystic rose: every pair of 18 points on a circle joined by a line,
20 REM coloured by how far apart the two points are.
30 N=18
40 R=120
50 WINDOW @1; 256,256
60 FOR I=0 TO N-2
70   FOR J=I+1 TO N-1
80     K=(J-I) MIN (N-J+I)
90     COLOR @1; 255*K/(N/2),60,255-255*K/(N/2)
100    MOVETO @1; 128+R*COS(2*PI()*I/N),128+R*SIN(2*PI()*I/N)
110    LINETO @1; 128+R*COS(2*PI()*J/N),128+R*SIN(2*PI()*J/N)
120  NEXT J
130 NEXT I
140 UPDATE @1
150 INPUT "Press Enter to close the window",A$
