10 REM A value that fails prints as 0 and the rest of the line is written
20 PRINT USING "3d,3d,3d";1,Q,3
30 PRINT "not reached"
