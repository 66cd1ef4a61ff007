// Switches between this interpreter's own language and the classic one that
// old programs were written for; set from the command line or the shell.
#pragma once

// --classic or CLASSIC ON: A$[s]=X leaves A$ exactly s-1+LEN(X) long; IMAGE
// formats are classic fields; argument lists close with either bracket; TAPE
// and KEY lines of program files are skipped; NEXT is matched while running;
// keywords need no blanks; signed numbers at INPUT; program files in any line
// order; relations chain; TAB, SPA and LIN in PRINT USING; undeclared arrays
// of two subscripts are 10 by 10.
inline bool g_classic = false;
