#!/usr/bin/env basic
! PRINT USING writes values through a format: d fields for numbers (width and
! decimals), a fields for strings, x for blanks, quoted text, / for a new line.
! The format is an IMAGE line, named by its label, or any string expression.
HEAD: IMAGE "Month",4x,"Payment",3x,"Interest",2x,"Principal",5x,"Balance"
ROW: IMAGE 3d,4x,9.2d,2x,9.2d,2x,9.2d,2x,10.2d
SUM: IMAGE "Total",2x,9.2d,2x,9.2d,/,"Rate",3x,5.2d,"% a year"
P = 5000
Y = 6
R = Y / 100 / 12
M = P * R / (1 - (1 + R) ^ -12)
PRINT "A loan of 5000 paid back in 12 months:"
PRINT USING HEAD
T = 0
FOR I = 1 TO 12
  J = P * R
  P = P - (M - J)
  T = T + J
  PRINT USING ROW; I, M, J, M - J, ABS(P)
NEXT I
PRINT USING SUM; 12 * M, T, Y
! Flags: - left-justifies, 0 fills with zeros, s shows + on a number not negative.
! ('124 is the character |; a "-" first in a format would choose the line ending.)
F$ = "2x,-8a,'124,06d,2x,s6.1d"
PRINT USING F$; "Order", 42, 3.14
PRINT USING F$; "Refund", 7, -2.5
! 3(...) repeats a group; a format runs again while values remain.
PRINT USING "3(4d)"; 1, 2, 3, 4, 5, 6
