10 REM What a program wrote before it chains is in the file for the next one
20 ASSIGN "notes.txt",1,R,"TEXT"
30 PRINT #1;"WRITTEN BEFORE THE CHAIN"
40 CHAIN "chain/reader.bas"
