10 PRINT "NOT RUN"
20 A: REM first
30 B: REM
40 a: PRINT "second"
