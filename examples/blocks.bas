#!/usr/bin/env basic
! Structured blocks: FOR/NEXT, WHILE/NEXT, REPEAT/UNTIL, IF/ELSE/ENDIF and
! SELECT/CASE/ENDSELECT, with labels instead of statement numbers.
PRINT "Fizz buzz:"
FOR I = 1 TO 15
  SELECT 0
  CASE I MOD 15
    PRINT "FizzBuzz";
  CASE I MOD 3
    PRINT "Fizz";
  CASE I MOD 5
    PRINT "Buzz";
  CASE ELSE
    PRINT DEC$(I);
  ENDSELECT
  PRINT " ";
NEXT I
PRINT
! WHILE runs while its condition holds: the Collatz steps from 27.
N = 27
S = 0
WHILE N <> 1
  IF N MOD 2 = 0 THEN
    N = N / 2
  ELSE
    N = 3 * N + 1
  ENDIF
  S = S + 1
ENDWHILE
PRINT "27 reaches 1 in"; S; "steps"
! REPEAT runs at least once: the digits of a number, last first.
N = 2024
D$ = ""
REPEAT
  D$ = D$ + DEC$(N MOD 10)
  N = N DIV 10
UNTIL N = 0
PRINT "Digits of 2024 backwards: "; D$
! Ranges and relations in CASE items.
FOR T = -5 TO 35 STEP 20
  SELECT T
  CASE < 0
    W$ = "freezing"
  CASE 0 TO 20
    W$ = "mild"
  CASE ELSE
    W$ = "hot"
  ENDSELECT
  PRINT T; "degrees is "; W$
NEXT T
! GOSUB to a label; a one-line function with DEF.
DEF FNSQ(X) = X * X
GOSUB SQUARES
END
SQUARES:
  FOR I = 1 TO 5
    PRINT FNSQ(I);
  NEXT I
  PRINT
  RETURN
