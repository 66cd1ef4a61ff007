#!/usr/bin/env basic
! DATA, READ and RESTORE: a small stock list read until the data runs out,
! printed in PRINT's 15-column zones and with TAB.
PRINT "Item", "Count", "Price", "Value"
T = 0
ON END THEN TOTAL
LOOP:
  READ N$, C, P
  PRINT N$, C, P, C * P
  T = T + C * P
  GOTO LOOP
TOTAL:
PRINT TAB(45); "----------"
PRINT "Total"; TAB(45); T
! TYP tells what READ would take next: 1 a number, 2 a string, 3 nothing.
RESTORE
PRINT "After RESTORE the next item is type"; TYP(0)
! RESTORE to a label reads from the first DATA at or after it.
RESTORE PRICES
READ N$
PRINT "First item from PRICES on: "; N$
OFF END
DATA "Bolts", 120, 0.05
DATA "Nuts", 300, 0.02
PRICES:
DATA "Washers", 75, 0.01, "Hinges", 8, 2.5
