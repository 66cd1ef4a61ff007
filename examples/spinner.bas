10 REM Turning squares. Every frame draws over the last square in white,
20 REM draws again the squares kept from every tenth frame, then the new
30 REM one, and shows them with UPDATE for 20 ms.
40 WINDOW @1; 240,240
50 FOR F=0 TO 90
60   IF F=0 THEN 140
70   G=F-1
80   W=1
90   GOSUB 300
100  FOR G=0 TO F-1 STEP 10
110    W=0
120    GOSUB 300
130  NEXT G
140  G=F
150  W=0
160  GOSUB 300
170  UPDATE @1
180  SLEEP 20
190 NEXT F
200 INPUT "Press Enter to close the window",A$
210 END
300 REM The square of frame G, turned by 3 degrees a frame and shrinking,
310 REM in its colour, or in white when W=1.
320 A=G*PI()/60
330 S=100-G
340 IF W=1 THEN 370
350 COLOR @1; G*2.8,0,255-G*2.8
360 GOTO 380
370 COLOR @1; 255,255,255
380 MOVETO @1; 120+S*COS(A),120+S*SIN(A)
390 FOR K=1 TO 4
400   LINETO @1; 120+S*COS(A+K*PI()/2),120+S*SIN(A+K*PI()/2)
410 NEXT K
420 RETURN
