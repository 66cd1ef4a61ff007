#!/usr/bin/env basic
! A guessing game with INPUT. RND with a negative argument seeds the
! generator, so the same lucky number always hides the same secret.
INPUT "Your lucky number? ", L
X = RND(-ABS(L) - 1)
START:
PRINT "I think of a number from 1 to 100."
S = INT(RND(0) * 100) + 1
FOR T = 1 TO 7
  INPUT "Your guess? ", G
  IF G = S THEN
    PRINT "Right in"; T; "guesses!"
    GOTO AGAIN
  ENDIF
  IF G < S THEN PRINT "Too low."
  IF G > S THEN PRINT "Too high."
NEXT T
PRINT "Out of guesses: it was"; S
AGAIN:
INPUT "Play again (Y/N)? ", A$
IF UPS$(A$[1;1]) = "Y" THEN START
PRINT "Bye."
END
