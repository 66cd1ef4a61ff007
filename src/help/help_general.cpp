// Help texts of the general topics.
#include "help/help_tree.h"

namespace {

constexpr const char* kIdentifiers[] = {
    "<stmtIdentifier> ::= <stmtLabel>: | <stmtNumber>",
    "     <stmtLabel> ::= <alphaNumIdent>",
    "    <stmtNumber> ::= <1 to 999999>",
    " <alphaNumIdent> ::= <letter><letterDigitUnderscoreString>",
    "    <numericVar> ::= <alphaNumIdent> | <alphaNumIdent>(<subscripts>)",
    "     <stringVar> ::= <alphaNumIdent>$ | <alphaNumIdent>$(<subscripts>)",
    "        <fnName> ::= FN<letterDigitUnderscoreString>",
    "Identifiers have case of first use.",
    "Identifiers are not case sensitive.",
    "Names are significant to 63 characters; keywords are reserved.",
    "A label is referenced with or without its ':' (GOTO FIN).",
};

constexpr const char* kOperators[] = {
    "Numeric operators from highest to lowest precedence",
    "    ^ **             Power, from the left: 2^3^2 is 64",
    "    - NOT            Negate, logical not (once): -2^2 is -4",
    "    * / MOD DIV      Multiply, divide, remainder, divide down",
    "    + -              Add, subtract",
    "    MIN MAX          Smaller, larger: 3 MIN 5+1 is 3",
    "    = <> # < <= > >= Relations: 1 when true, else 0",
    "    AND              1 when both are not 0",
    "    XOR EQV IMP      Exactly one, both or neither, implication",
    "    OR               1 when either is not 0",
    "AND, OR and IMP skip the right side when the left one decides.",
    "Relations do not chain: A<B<C is refused. =< and => also work.",
    "String operators: + joins strings; the relations compare them",
    "byte by byte, a string before any longer one that begins with it.",
    "Any value that is not 0 counts as true.",
};

constexpr const char* kFormats[] = {
    "PRINT writes a number with a blank or '-' before it and a blank after:",
    "    Whole numbers up to 999999 as digits: 7, -42, 40000.",
    "    (from 32768 on with a '.' so that they read as floating values);",
    "    larger ones to 6 digits with an exponent: 1.23457E+09.",
    "    Others to 5 significant digits: 3.1416, -0.5, 1.2346E+05, 1E-07.",
    "    NAN, INF and -INF where arithmetic made them.",
    "',' moves to the next 15-column zone; lines fold at the WIDTH.",
    "PRINT USING formats numbers and strings by an IMAGE: see HELP IMAGE.",
    "CONVERT and DEC$ turn numbers into text; DEC and CONVERT read it back.",
};

constexpr const char* kNumerics[] = {
    "Numeric variables are always 32 bit floating point numbers.",
    "Numeric variables referenced without being initialize cause an error.",
    "Numeric arrays should use '( )' however '[ ]' are accepted and converted.",
    "Numeric Constant examples: 4096, 10.3E34, 0x1F",
};

constexpr const char* kStrings[] = {
    "String variables are always initialized to the null string.",
    "String arrays must be subscripted using '(' and ')'",
    "When a substring is specified it must always use '[' and ']'",
    "    A$[s]   - Characters s to the end.",
    "    A$[s,e] - Characters s through e.",
    "    A$[s;n] - n characters from s.",
    "Subscripts that have a length of zero represent the null string.",
    "A substring that reads past the end is filled with blanks.",
    "A$[s]=X keeps the character after X: \"ABCDE\" with A$[2]=\"Z\" is AZC.",
    "String constants: \"text\"; '<code> adds any character: \"A\"'13'10\"B\"",
    "+ joins strings. A string holds up to 134,217,727 characters.",
    "DIM A$[n] records a length; longer values are still stored.",
};

constexpr const char* kConsole[] = {
    "Output to the console supports modified ANSI escape sequences.",
    "ESC is CHR$(27); n is a number of 1 to 4 digits.",
    "ESC A, ESC B, ESC C, ESC D - Cursor up, down, right, left.",
    "ESC [nA, ESC [nB, ESC [nC, ESC [nD - The same, n times.",
    "ESC H, ESC [H, ESC [f - Cursor home.",
    "ESC Fcccrrr - Cursor to column ccc, row rrr (3 digits each, from 0).",
    "ESC [n;H - Cursor to row n, column n (from 0).",
    "ESC E, ESC [2J - Clear screen, cursor home.",
    "ESC J, ESC [J - Erase cursor to end-of-screen.",
    "ESC K, ESC [K - Erase cursor to end-of-line.",
    "ESC [1K - Erase start-of-line to cursor.",
    "ESC [2K - Erase line.",
    "ESC [n;...;nm - Attributes, applied in order:",
    "     0 - Normal intensity, reverse off.",
    "     1 - Bright.             22 - Normal intensity.",
    "     7 - Reverse.            27 - Reverse off.",
    "    30-37 - Foreground colour.  40-47 - Background colour:",
    "        0 black, 1 red, 2 green, 3 yellow,",
    "        4 blue, 5 magenta, 6 cyan, 7 white.",
    "    80 - Cursor off.         81 - Cursor on.",
    "    2, 4, 5, 8, 24, 25 - Ignored. Other numbers change nothing.",
    "A sequence that is not understood prints as text.",
    "Escape characters count in the PRINT column (TAB, zones).",
    "Output to a pipe or file keeps the text only.",
};

constexpr const char* kGraphics[] = {
    "Windows @1 to @39 are drawn off screen, green on white at first;",
    "UPDATE shows the drawing. RUN closes every window.",
};

constexpr const char* kNotes[] = {
    "Bad syntax lines are kept and preceeded with a '?'",
    "Single-line and End-of-line comments with '!' or '//'",
    "Blanks lines may be entered with a line containing a single semicolon.",
    "Entering only a statement number will delete the line.",
    "Non-executing statements have zero performance penalty.",
    "Values are rounded when converted internally to integers.",
    "Statement labels may optionally be followed by a statement.",
    "Statement numbers are optional on externally edited programs.",
    "When an unnumbered statement is loaded, a statement number will be added.",
    "Programs that are numbered when loaded may be partially renumbered.",
    "Maximum statement number is 999999",
    "HP 2000 Basic is a subset of the Basic language implemented here.",
    "Data files: CREATE, FILES or ASSIGN, then READ #, PRINT #, UPDATE #;",
    "programs share them through LOCK. A kill never leaves half a statement.",
    "basic --sandbox DIR keeps every file in DIR and below it.",
    "CHAIN runs another program; COM variables keep their values.",
    "OPEN, EXTEND, SPAWN and SYSTEM are kept as text: HELP names the",
    "statement to use instead. The classic switch (CLASSIC) follows",
    "classic systems where they differ: see HELP CLASSIC.",
    "Memory has been sacrificed for fast execution and short development time.",
    "",
    "Up and Down recall the lines typed before, in this and earlier sessions.",
    "The manual page basic(1) describes the shell, the editor and the files.",
#ifdef __EMSCRIPTEN__
    "",
    "In this web page your files are kept by the browser; the examples are in",
    "/examples (GET /examples/rose.bas). Ctrl+C also ends a SLEEP. After BYE,",
    "Enter starts the interpreter again.",
#endif
};

constexpr const char* kFileNames[] = {
    "A file name is a path, relative to the working folder. A leading $ names",
    "a file of the system library, the folder that the environment variable",
    "BASIC_LIB names; a leading * one of the group library (BASIC_GROUP).",
    "Unset, each is the working folder. CHAIN \"*TREK0\" runs TREK0 of the",
    "group library; FILES GAME1,*,$LIB names files without quotes.",
    "An existing file is found by its name, then (a program, for GET, APPEND,",
    "MERGE, CHAIN and the command line) with .bas added, then ignoring case:",
    "GET ADREAD loads adread.bas. Two files that match ignoring case are an",
    "error. SAVE and CREATE write the name as typed. ./$X is a file named $X.",
    "CATALOG $ and CATALOG * list the libraries.",
};

constexpr const char* kTextFiles[] = {
    "A file that is no data file opens as a text file of plain lines.",
    "ASSIGN \"LOG\",1,R,\"TEXT\" opens one and makes it, empty, when missing;",
    "\"APPEND\" too, writing at its end. Otherwise the first PRINT # after",
    "it is opened replaces the old text. Status 3 a text file, 6 read-only.",
    "PRINT #1;list writes as PRINT does and ends the line unless , or ;",
    "closes the list. MAT PRINT #1;A writes a row to a line, with commas.",
    "LINPUT #1;A$ reads a whole line; READ #1;list and MAT READ #1 read",
    "items separated by commas, as INPUT reads typed ones. TYP(1) gives 1",
    "number, 2 string, 3 end; the end goes to IF END #1, else End-of-file.",
    "A line longer than the DIM length is String overflow and stays to be",
    "read. Bytes pass unchanged. READ #1,r, UPDATE, ADVANCE and LOCK are",
    "refused. Output is written at CLOSE, at the end of the run and before",
    "input. PURGE removes a text file only when it is empty.",
};

// HELP CLASSIC finds this topic before the command's one line: the General group
// comes later in the tree.
constexpr const char* kClassic[] = {
    "CLASSIC ON, or basic --classic, makes old listings run as they did:",
    "- A$[s]=X leaves A$ exactly s-1+LEN(X) characters long.",
    "- IMAGE and PRINT USING formats are fields separated by ',': D a digit,",
    "  3D three, . the point, S the sign (before the first digit printed),",
    "  X a blank (between digits too: DDXDDD), E at the end an exponent",
    "  E+dd; 5A or AAAAA a string, cut or padded; 2X blanks; \"text\", /",
    "  and n(...). A number that does not fit fills its field with *; values",
    "  left over run the format again on a new line.",
    "- An argument list or substring closes with either bracket: ABS(Z] is",
    "  read and listed as ABS(Z).",
    "- A program file line holding only TAPE or KEY is skipped.",
    "- NEXT goes on with the latest FOR of its variable that is still",
    "  active, found while running; a FOR of that variable starts it again;",
    "  RETURN ends the loops of its subroutine; a NEXT without one stops the",
    "  run with \"NEXT without matching FOR\".",
    "- Keywords need no blanks: FORI=1TO3STEP2 is FOR I=1 TO 3 STEP 2 and",
    "  LETA=5 is LET A=5. A name is a letter and an optional digit (A1, A1$,",
    "  FNA); strings and REM text keep their letters; lines list with blanks.",
    "  A line that reads both ways takes the keyword reading; one that fails",
    "  it is read as usual, so long names and labels still work.",
    "- INPUT, MAT INPUT and ENTER read a + or - directly before a digit or",
    "  point as a number's sign: -40, +5, -.5, -1E3. A sign alone is text.",
    "- A program file's lines may come in any order: they are sorted by",
    "  number, and a later line of the same number replaces the earlier.",
    "- Relations chain left to right, each giving 1 or 0: IF R1=C1=0 means",
    "  (R1=C1)=0. A statement that begins A=B=0 still assigns to A and B.",
    "- TAB, SPA and LIN may stand among the values of PRINT USING: each acts",
    "  at its place, as in PRINT, and takes no field of the format.",
    "- An array used with two subscripts and no DIM is 10 by 10 (one",
    "  subscript gives 10 elements, with the switch on or off).",
    "Formats, loops and arrays follow the switch as the program runs; the",
    "rest as lines are typed or read. CLASSIC OFF restores the dialect's rules.",
};

constexpr HelpText kClassicText{kClassic};
constexpr HelpText kIdentifiersText{kIdentifiers}, kOperatorsText{kOperators},
    kFormatsText{kFormats}, kNumericsText{kNumerics}, kStringsText{kStrings},
    kConsoleText{kConsole}, kGraphicsText{kGraphics}, kFileNamesText{kFileNames},
    kTextFilesText{kTextFiles}, kNotesText{kNotes};

constexpr HelpEntry kGeneralEntries[] = {
    {"Identifiers", &kIdentifiersText}, {"Operators", &kOperatorsText},
    {"Formats", &kFormatsText},         {"Numerics", &kNumericsText},
    {"Strings", &kStringsText},         {"Console", &kConsoleText},
    {"Graphics", &kGraphicsText},       {"FileNames", &kFileNamesText},
    {"TextFiles", &kTextFilesText},     {"Notes", &kNotesText},
    {"Classic", &kClassicText},
};

constexpr HelpGroup kGeneral{kGeneralEntries};

}  // namespace

const HelpGroup& HelpGeneral() { return kGeneral; }
