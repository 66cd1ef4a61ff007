10 REM Draws, closes the window, and draws again: the last LINETO fails.
20 WINDOW @5; 64,48
30 FOR I=0 TO 63 STEP 8
40   MOVETO @5; I,0
50   LINETO @5; 63-I,47
60 NEXT I
70 UPDATE @5
80 PRINT "DRAWN"
90 CLOSE @5
100 LINETO @5; 1,1
