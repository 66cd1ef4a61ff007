10 REM PRINT of the 500,000 values that using_image.bas formats, written to a pipe
20 FOR I=1 TO 500000
30 PRINT (I MOD 50000)/4
40 NEXT I
