10 COM P,T,M,L(2),I$(2)
20 REM THE CAVE, part 3 of 3: saves (M=1) or restores (M=2) the game in
30 REM save.dat, then goes back into the game.
40 FILES *
50 CREATE R,"save.dat",1,16
60 ASSIGN "save.dat",1,R
70 IF M=2 THEN 130
80 PRINT #1,1;P,T,L(1),L(2)
90 PRINT "GAME SAVED AFTER";T;"TURNS."
100 GOTO 200
130 IF END #1 THEN 180
140 READ #1,1;P,T,L(1),L(2)
150 PRINT "GAME RESTORED: TURN";T
160 GOTO 200
180 PRINT "THERE IS NO SAVED GAME."
200 M=0
210 CHAIN "adventure/main.bas",RESUME
