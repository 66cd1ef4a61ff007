10 REM PRINT USING names an IMAGE statement: here it names a REM
20 PRINT USING 10;1
