10 REM A 3x3 system A*X=B with the solution 1,-2,3, solved through INV
20 DIM A(3,3),B(3),X(3),V(3,3),I(3,3),T(3,3)
30 MAT READ A,B
40 DATA 2,1,-1,-3,-1,2,-2,1,2
50 DATA -3,5,2
60 MAT V=INV(A)
70 MAT X=V*B
80 PRINT "SOLUTION"
90 MAT PRINT X
100 REM The product with the inverse gives the identity back within float precision
110 MAT I=A*V
120 E=0
130 FOR R=1 TO 3
140 FOR C=1 TO 3
150 E=E MAX ABS(I(R,C)-(R=C))
160 NEXT C
170 NEXT R
180 PRINT "LARGEST ERROR BELOW 1E-6:";E<1E-6
190 MAT T=TRN(A)
200 PRINT "TRANSPOSE"
210 MAT PRINT T;
220 REM The inverse of the transpose is the transpose of the inverse
230 MAT T=INV(T)
240 MAT I=TRN(V)
250 MAT I=I-T
260 E=0
270 FOR R=1 TO 3
280 FOR C=1 TO 3
290 E=E MAX ABS(I(R,C))
300 NEXT C
310 NEXT R
320 PRINT "SAME:";E<1E-6
330 REM An inverse into its own operand, and a product into one of its operands
340 MAT A=INV(A)
350 MAT A=A*B
360 PRINT "AGAIN"
370 MAT PRINT A;
