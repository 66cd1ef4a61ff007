10 DIM A(10),B$[20],C$(5)[8],D(3,4)
20 DIM E(2),A(5)
30 PRINT "not reached"
