10 INPUT A,B
20 PRINT "not reached"
