10 REM kept
20 END
30 REM lost
