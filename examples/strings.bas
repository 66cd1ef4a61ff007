#!/usr/bin/env basic
! Strings and substrings: A$[s] from s to the end, A$[s,e] from s to e,
! A$[s;n] n characters from s. Positions start at 1.
A$ = "Velo Basic"
PRINT A$; " has"; LEN(A$); "characters"
PRINT "From 6 on:    "; A$[6]
PRINT "1 to 4:       "; A$[1,4]
PRINT "3 from 6:     "; A$[6;3]
PRINT "Upper case:   "; UPS$(A$)
PRINT "'Basic' at:  "; POS(A$, "Basic")
! Assigning into a range replaces those characters.
B$ = A$
B$[1,4] = "Fast"
PRINT "Replaced:     "; B$
! Reverse a string one character at a time.
R$ = ""
FOR I = LEN(A$) TO 1 STEP -1
  R$ = R$ + A$[I;1]
NEXT I
PRINT "Reversed:     "; R$
! Count the vowels with a string CASE.
N = 0
FOR I = 1 TO LEN(A$)
  SELECT UPS$(A$[I;1])
  CASE "A", "E", "I", "O", "U"
    N = N + 1
  ENDSELECT
NEXT I
PRINT "Vowels:      "; N
! Strings compare byte by byte; CHR$ and NUM convert codes.
IF "apple" < "apricot" THEN PRINT "apple sorts before apricot"
PRINT "Code of A:   "; NUM("A"); "  character 66: "; CHR$(66)
PRINT "Left, right:  "; LEFT$(A$, 4); "/"; RIGHT$(A$, 5)
