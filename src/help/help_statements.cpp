// Help texts of the statements. A line that begins with the statement's
// keyword (or "[LET]") is a usage line: the help tests parse each one.
#include "help/help_tree.h"

namespace {

// A statement this interpreter keeps only as text, and what to use instead.
#define KEPT_AS_TEXT(kw) kw " - Kept as text (\"Feature not supported\" when run)."

constexpr const char* kAssign[] = {
    "ASSIGN <fileName>,<fileNumber>,<returnVar>[,<restriction>]",
    "ASSIGN *,<fileNumber>,<returnVar> - Close the file number.",
    "Opens a file as file <fileNumber> (1 to 16), closing what it had.",
    "<returnVar> gets 0 opened, 1 opened read-only, 2 no such file, 3 a",
    "text file opened, 4 damaged, 5 cannot be opened, 6 text, read-only.",
    "<restriction> RR opens for reading only; WR and NR read and write.",
    "\"TEXT\" opens a text file, made when missing: its first PRINT # replaces",
    "the old text. \"APPEND\" adds at its end. Other text (a lock word) opens",
    "the file without restriction. Programs may share it: see LOCK.",
};
constexpr const char* kAdvance[] = {
    "ADVANCE #<fileNumber>;<count>,<returnVar> - Skip items in a file.",
    "<returnVar> gets how many were left when the file ended, else 0.",
};
constexpr const char* kCase[] = {
    "CASE <numericCase> [,<numericCaseList>]",
    "CASE <stringCase> [,<stringCaseList> ]",
    "CASE ELSE",
    "<numericCase> ::= <numExp> | <relOp><numExp> | <numExp> TO <numExp>",
    " <stringCase> ::= <strExp> | <relOp><strExp> | <strExp> TO <strExp>",
    "      <relOp> ::= = | <> | < | <= | > | >=",
    "Part of SELECT/CASE/ENDSELECT clause; TO includes both ends;",
    "a CASE ELSE must come last.",
};
constexpr const char* kChain[] = {
    "CHAIN [<returnVar>,]<fileName>[,<stmtIdentifier>]",
    "Loads, links and runs another program from its start or from",
    "<stmtIdentifier>; its COM variables take the values of this program's",
    "by position. Files are closed. On a failure <returnVar> gets the error",
    "(1015 cannot open, 1016 bad lines, 2012 outside the sandbox, 2014",
    "two files match, or the link's) and the program goes on; without it",
    "the run stops. <fileName> is found as GET finds it: HELP FILENAMES.",
};
constexpr const char* kClose[] = {
    "CLOSE @<gdiNumber>",
    "Closes a graphics window.",
    "CLOSE #<fileNumber> - Closes a data file.",
};
constexpr const char* kColor[] = {
    "COLOR @<gdiNumber>; <red>,<green>,<blue>",
    "Sets the pen colour of a graphics window; each part 0 to 255.",
};
constexpr const char* kCom[] = {
    "COM <dimSpec> [,<dimSpecList>]",
    "Declares variables that CHAIN hands on; must be the first statement.",
    "Plain names too: COM A,B$,C(10),D$[20]. The next program's COM list",
    "takes the values by position, each of the same kind and bounds.",
};
constexpr const char* kConvert[] = {
    "CONVERT <stringExp> TO <numericVar>[,<stmtIdentifier>]",
    "CONVERT <numericExp> TO <stringVar>",
    "Text that is no number goes to <stmtIdentifier>, else is an error.",
};
constexpr const char* kCreate[] = {
    "CREATE <returnVar>,<fileName>,<records>[,<recordSize>] - Create a file.",
    "<recordSize> in words, 1 to 256 (256 when left out); a number takes 2",
    "words, a string 1 + half its length. <returnVar> gets 0 created, 1 the",
    "file exists (kept), 2 sizes out of range (1 GiB and 16777215 records",
    "at most), 3 failed, or no room on the disk for the whole file.",
};
constexpr const char* kData[] = {
    "DATA <dataSpec> [,<dataSpecList>]",
    "<dataSpec> ::= <numericConstant> | <stringLiteral>",
    "Constants for READ, read in program order. A number may have a sign",
    "(+.12, -7); text must be quoted: DATA NAN or DATA YES is \"Bad Constant\".",
};
constexpr const char* kDef[] = {
    "DEF <fnName>(<parameterList>)=<numericExp>",
    "DEF <fnName>$(<parameterList>)=<stringExp>",
    "<fnName> is FN and a name: FNA(X) calls it. () takes no parameters.",
    "Parameters are simple names, local to the one-line body.",
    "A function may not call itself, directly or through others.",
};
constexpr const char* kDim[] = {
    "DIM <dimSpec> [,<dimSpecList>]",
    "<dimSpec> ::= <strSpec> | <numArraySpec>",
    "<numArraySpec>::= <arrayId>(<Dimensions>)",
    "<strSpec> ::= <stringId>$[<stringLength] | <strArraySpec>",
    "<strArraySpec>::= <stringId>$(<Dimensions>) [<stringLength>]",
    "Dimensions are constants: DIM A(10),B$[20],C$(5)[8],D(3,4)",
    "Subscripts run from 1. An array used without DIM has one",
    "subscript and 10 elements.",
};
constexpr HelpLine kElse{"ELSE - Part of IF/ELSE/ENDIF clause."};
constexpr const char* kEnd[] = {
    "END - End program.",
    "END IF - Same as ENDIF.",
    "END WHILE - Same as ENDWHILE.",
    "END SELECT - Same as ENDSELECT.",
};
constexpr HelpLine kEndIf{"ENDIF - End of IF/ELSE/ENDIF clause."};
constexpr HelpLine kEndSelect{"ENDSELECT - End of SELECT/CASE/ENDSELECT clause."};
constexpr HelpLine kEndWhile{"ENDWHILE - Ends WHILE loop, as NEXT does."};
constexpr const char* kEnter[] = {
    "ENTER <seconds>,<returnVar>,<variable>",
    "ENTER #<numericVar>[,<seconds>,<returnVar>,<variable>]",
    "Timed INPUT of one item, waiting 1 to 255 seconds. <returnVar>",
    "gets the time taken, -256 when the time ran out, or minus the",
    "time for an answer of the wrong type. # gets the port number.",
};
constexpr const char* kExtend[] = {
    KEPT_AS_TEXT("EXTEND"),
    "To grow a data file, CREATE a larger one and copy the records.",
};
constexpr const char* kFiles[] = {
    "FILES <fileName>[,<fileNameList>]",
    "Names the files 1 to 16 in order; * keeps a number for ASSIGN. A file",
    "that is no data file opens as a text file: HELP TEXTFILES.",
    "Names may be written without quotes (FILES *ZZ,$LIB): HELP FILENAMES.",
    "RUN opens them all.",
};
constexpr const char* kFor[] = {
    "FOR <numericVar> = <numericExp> TO <numericExp> [STEP <numericExp>]",
    "NEXT <numericVar> ends the loop. Step, limit and start are taken",
    "once; a loop whose start is past its limit is skipped.",
    "With CLASSIC ON a NEXT is matched to its FOR while running.",
};
constexpr const char* kGosub[] = {
    "GOSUB <stmtIdentifier>",
    "GOSUB <numericExp> OF <stmtId>[,<stmtIdList>][ELSE <stmtId>]",
    "RETURN continues after the GOSUB; GOSUBs nest up to 100 deep.",
    "GO SUB in two words is the same.",
};
constexpr const char* kGoto[] = {
    "GOTO <stmtIdentifier>",
    "GOTO <numericExp> OF <stmtId>[,<stmtIdList>][ELSE <stmtId>]",
    "The value is rounded and picks a target; out of range goes to",
    "the ELSE target, or on to the next statement. GO TO is the same.",
};
constexpr const char* kHide[] = {
    "HIDE @<gdiNumber>",
    "Hides a graphics window.",
};
constexpr const char* kIf[] = {
    "IF <numericExp> THEN <stmtId>",
    "IF <numericExp> THEN <simpleStmt>",
    "IF <numericExp> THEN",
    "The last form is part of IF/ELSE/ENDIF clause.",
    "Blocks, DATA, DIM, DEF, IMAGE, COM and REM may not follow THEN.",
    "Note: IF END is converted to ON END",
};
constexpr const char* kImage[] = {
    "IMAGE <format> - Format for PRINT USING.",
    "Items are separated by ',': <w>d or <w>.<p>d a number, <w>a a",
    "string, <w>x blanks, \"text\" and '<code> literals, / a new line,",
    "<n>(<items>) the items n times. - before the width left-justifies,",
    "0 fills with zeros, s shows + unless negative; * as width or",
    "precision means none. A first #, + or - ends the line without",
    "a new line, with a carriage return, or with a line feed.",
    "Errors in a format are reported when PRINT USING runs it.",
    "With CLASSIC ON formats are classic: 3D.2D, S5D, DDXDDD, D.DDE, 5A, 2X",
    "and literals, separated by ',' (see HELP CLASSIC).",
};
constexpr const char* kInput[] = {
    "INPUT [\"prompt\",]<variable>[,<variableList>]",
    "Typed items are separated by ','; a prompt replaces the '?'.",
    "An empty line ends INPUT and leaves the rest as they were.",
    "A signed item (-40) is text; with CLASSIC ON it is a number.",
};
constexpr const char* kLet[] = {
    "[LET] <assignment> [;<assignmentList>]",
    "<assignment>    ::= <numericAssignt | <stringAssign>",
    "<numericAssign> ::= <numericVar> [,<numericVarList>] = <numericExp>",
    "                | <numericVar> [=<numericVarList>] = <numericExp>",
    "<stringAssign>  ::= <stringVar>  [,<stringVarList>]  = <stringExp>",
    "                | <stringVar>  [=<stringVarList>]  = <stringExp>",
    "Every target gets the one value. A$[s]= assigns into a substring.",
};
constexpr const char* kLineTo[] = {
    "LINETO @<gdiNumber>; <x>,<y>",
    "Draws a line from the pen position to x,y, which becomes the pen",
    "position; the end point itself is not drawn. UPDATE shows it.",
};
constexpr const char* kLock[] = {
    "LOCK #<fileNumber> - Take the data file's lock, shared by all programs.",
    "Another program's LOCK on the file waits until UNLOCK, CLOSE # or the",
    "end of the run; Ctrl+C breaks the wait. Each statement is written",
    "whole and READ # sees others' writes, but only LOCK keeps a READ # and",
    "the PRINT # after it together: LOCK, read, write, UNLOCK.",
};
constexpr const char* kLinput[] = {
    "LINPUT [\"prompt\",]<stringVar>",
    "Reads a whole typed line, blanks, quotes and commas included.",
    "LINPUT #<fileNumber>;<stringVar> - The next line of a text file.",
};
constexpr const char* kMat[] = {
    "MAT <array> = ZER[(<dims>)] - Zeros; CON ones, IDN identity.",
    "MAT <array> = <array> [<matOp> <array>] - <matOp> is +, - or *.",
    "MAT <array> = (<numericExp>) * <array>",
    "MAT <array> = TRN(<array>) - Transpose; INV(<array>) inverse.",
    "MAT READ [#<fileNumber>[,<record>];]<array>[(<dims>)][,<arrayList>]",
    "MAT INPUT <array>[(<dims>)][,<arrayList>]",
    "MAT PRINT <array>[;<arrayList>] - ';' packs a row, ',' uses zones.",
    "MAT PRINT #<fileNumber>[,<record>];<array>[,<arrayList>] - To a file.",
    "String arrays: MAT A$ = B$, MAT A$ = ZER, READ, INPUT, PRINT.",
    "New bounds fit within the array's first size. INV: \"Matrix is singular\".",
};
constexpr const char* kMoveTo[] = {
    "MOVETO @<gdiNumber>; <x>,<y>",
    "Moves the pen of a graphics window to x,y without drawing.",
};
constexpr const char* kNext[] = {
    "NEXT <numericVar> - Ends FOR loop.",
    "NEXT - Ends WHILE loop",
};
constexpr const char* kOff[] = {
    "OFF END - Cancels ON END.",
    "OFF END #<fileNumber> - Cancels ON END #.",
    "OFF ERROR - Stops the run with \"Feature not supported\".",
};
constexpr const char* kOn[] = {
    "ON <numericExp> GOTO <stmtIdent>[,<stmtIdentList>][ELSE <stmtIdent>]",
    "ON <numericExp> GOSUB <stmtIdent>[,<stmtIdentList>][ELSE <stmtIdent>]",
    "ON <numericExp> RESTORE <stmtIdent>[,<stmtIdentList>][ELSE <stmtIdent>]",
    "ON END THEN <stmtIdentifier>",
    "ON ERROR THEN <stmtIdentifier>",
    "ON END #<fileNumber> THEN <stmtIdentifier>",
    "As GOTO ... OF; RESTORE truncates the value instead of rounding.",
    "With ON END, a READ past the last DATA or file item goes there.",
    "With ON ERROR the run stops: \"Feature not supported\".",
};
constexpr const char* kOpen[] = {
    KEPT_AS_TEXT("OPEN"),
    "Open data files with FILES or ASSIGN; make them with CREATE.",
};
constexpr const char* kPrint[] = {
    "PRINT [<printList>]",
    "<printList> ::= <printItem>[,<printItemList>][; | ,]",
    "<printItem> ::= <numericExp> | <stringExp> | TAB(n) | SPA(n) | LIN(n)",
    "',' moves to the next 15-column zone, ';' joins items; a closing",
    "',' or ';' keeps the line open. Lines fold at the WIDTH.",
    "PRINT USING <stmtIdentifier>[;<usingList>]",
    "PRINT USING <stringExp>[;<usingList>] - Through a format: see IMAGE.",
    "PRINT #<fileNumber>[,<record>];<valueList>[,END] - Write to a file.",
    "END writes an end-of-file mark; PRINT #n,r alone empties record r;",
    "to a text file PRINT # writes as PRINT does: HELP TEXTFILES.",
};
constexpr const char* kPurge[] = {
    "PURGE <returnVar>,<fileName> - Delete a data file.",
    "<returnVar> gets 0 deleted, 1 no such file, 2 not a data file (kept;",
    "an empty file is deleted), 3 cannot be deleted, 4 open in this program.",
};
constexpr const char* kRandomize[] = {
    "RANDOMIZE - Seed RND from the clock.",
    "RANDOMIZE <numericExp> - Seed RND from the value: the same value",
    "repeats the same numbers. RANDOM is the same statement. Each RUN seeds",
    "from the clock; a program started by CHAIN goes on with its caller's",
    "numbers. RANDOM=5 and the like stay assignments.",
};
constexpr const char* kRandom[] = {
    "RANDOM [<numericExp>] - The older spelling of RANDOMIZE.",
};
constexpr const char* kRead[] = {
    "READ [<readList>]",
    "<readList> ::= <variable>[,<variableList>]",
    "Takes the next DATA constants. Past the last one: \"Out of data\",",
    "or the ON END target.",
    "READ #<fileNumber>[,<record>];<readList> - Read from a data file.",
    "READ #<fileNumber>,<record> - Move to the start of a record.",
    "A text file's items are read as INPUT reads typed ones.",
};
constexpr const char* kRem[] = {
    "REM <text> - Remark.",
    "Single-line and End-of-line comments with '!' or '//'",
};
constexpr HelpLine kRepeat{"REPEAT - Begin REPEAT/UNTIL clause."};
constexpr const char* kRestore[] = {
    "RESTORE - READ starts again at the first DATA.",
    "RESTORE <stmtIdentifier> - At the first DATA from that statement on.",
    "RESTORE <numericExp> OF <stmtId>[,<stmtIdList>][ELSE <stmtId>]",
};
constexpr HelpLine kReturn{"RETURN - Return after GOSUB"};
constexpr const char* kShow[] = {
    "SHOW @<gdiNumber>",
    "Shows a hidden graphics window.",
};
constexpr const char* kSleep[] = {
    "SLEEP <timeExp> - Sleeps specified number of milliseconds.",
    "Less than 1 is \"Argument out of range\".",
};
constexpr const char* kSelect[] = {
    "SELECT <numericExp>",
    "SELECT <stringExp>",
    "Runs the first CASE whose items match, else CASE ELSE, then goes",
    "on after ENDSELECT.",
};
constexpr const char* kSpawn[] = {
    KEPT_AS_TEXT("SPAWN"),
    "CHAIN runs another program in this one's place.",
};
constexpr const char* kStop[] = {
    "STOP - Stop program",
    "CONTINUE (CONT) goes on after it, the variables as they were.",
};
constexpr const char* kSystem[] = {
    KEPT_AS_TEXT("SYSTEM"),
    "END or STOP ends a program; BYE leaves the shell.",
};
constexpr const char* kTrace[] = {
    "TRACE ON - Show each statement's number, as [n], before it runs.",
    "TRACE OFF - Stop showing them.",
    "The numbers go where PRINT writes. The shell's TRACE ON and TRACE OFF",
    "do the same between runs.",
};
constexpr HelpLine kTron{"TRON - Same as TRACE ON."};
constexpr HelpLine kTroff{"TROFF - Same as TRACE OFF."};
constexpr HelpLine kUnlock{"UNLOCK #<fileNumber> - Let go of the data file's lock (HELP LOCK)."};
constexpr const char* kUntil[] = {
    "UNTIL <numericExp> - End of REPEAT/UNTIL clause.",
    "Goes back to the REPEAT while the value is 0.",
};
constexpr const char* kUpdate[] = {
    "UPDATE @<gdiNumber>",
    "Shows what was drawn in a graphics window.",
    "UPDATE #<fileNumber>;<valueList> - Rewrite items of a data file.",
    "Each value replaces the next item, of its type; strings keep their length.",
};
constexpr const char* kWhile[] = {
    "WHILE <numericExp> - Begin WHILE/NEXT clause.",
    "The body runs while the value is not 0; NEXT or ENDWHILE ends it.",
};
constexpr const char* kWindow[] = {
    "WINDOW @<gdiNumber>; <width>,<height>",
    "Opens graphics window 1 to 39, width by height pixels.",
};

#undef KEPT_AS_TEXT

constexpr HelpText kExtendText{kExtend}, kOpenText{kOpen}, kSpawnText{kSpawn}, kSystemText{kSystem};
constexpr HelpText kAdvanceText{kAdvance}, kCreateText{kCreate}, kPurgeText{kPurge},
    kLockText{kLock};
constexpr HelpText kAssignText{kAssign}, kCaseText{kCase}, kChainText{kChain}, kCloseText{kClose},
    kColorText{kColor}, kComText{kCom}, kConvertText{kConvert}, kDataText{kData}, kDefText{kDef},
    kDimText{kDim}, kEndText{kEnd}, kEnterText{kEnter}, kFilesText{kFiles}, kForText{kFor},
    kGosubText{kGosub}, kGotoText{kGoto}, kHideText{kHide}, kIfText{kIf}, kImageText{kImage},
    kInputText{kInput}, kLetText{kLet}, kLineToText{kLineTo}, kLinputText{kLinput}, kMatText{kMat},
    kMoveToText{kMoveTo}, kNextText{kNext}, kOffText{kOff}, kOnText{kOn}, kPrintText{kPrint},
    kSeeding{kRandomize}, kRandomText{kRandom}, kReadText{kRead}, kRemText{kRem},
    kRestoreText{kRestore}, kShowText{kShow}, kSleepText{kSleep}, kSelectText{kSelect},
    kStopText{kStop}, kTraceText{kTrace}, kUntilText{kUntil}, kUpdateText{kUpdate},
    kWhileText{kWhile}, kWindowText{kWindow};

constexpr HelpEntry kStatementEntries[] = {
    {"ASSIGN", &kAssignText},   {"ADVANCE", &kAdvanceText}, {"CASE", &kCaseText},
    {"CHAIN", &kChainText},     {"CLOSE", &kCloseText},     {"COLOR", &kColorText},
    {"COM", &kComText},         {"CONVERT", &kConvertText}, {"CREATE", &kCreateText},
    {"DATA", &kDataText},       {"DEF", &kDefText},         {"DIM", &kDimText},
    {"ELSE", &kElse},           {"END", &kEndText},         {"ENDIF", &kEndIf},
    {"ENDSELECT", &kEndSelect}, {"ENDWHILE", &kEndWhile},   {"ENTER", &kEnterText},
    {"EXTEND", &kExtendText},   {"FILES", &kFilesText},     {"FOR", &kForText},
    {"GOSUB", &kGosubText},     {"GOTO", &kGotoText},       {"HIDE", &kHideText},
    {"IF", &kIfText},           {"IMAGE", &kImageText},     {"INPUT", &kInputText},
    {"LET", &kLetText},         {"LINETO", &kLineToText},   {"LOCK", &kLockText},
    {"LINPUT", &kLinputText},   {"MAT", &kMatText},         {"MOVETO", &kMoveToText},
    {"NEXT", &kNextText},       {"OFF", &kOffText},         {"ON", &kOnText},
    {"OPEN", &kOpenText},       {"PRINT", &kPrintText},     {"PURGE", &kPurgeText},
    {"RANDOM", &kRandomText},   {"RANDOMIZE", &kSeeding},   {"READ", &kReadText},
    {"REM", &kRemText},         {"REPEAT", &kRepeat},       {"RESTORE", &kRestoreText},
    {"RETURN", &kReturn},       {"SHOW", &kShowText},       {"SLEEP", &kSleepText},
    {"SELECT", &kSelectText},   {"SPAWN", &kSpawnText},     {"STOP", &kStopText},
    {"SYSTEM", &kSystemText},   {"TRACE", &kTraceText},     {"TROFF", &kTroff},
    {"TRON", &kTron},           {"UNLOCK", &kUnlock},       {"UNTIL", &kUntilText},
    {"UPDATE", &kUpdateText},   {"WHILE", &kWhileText},     {"WINDOW", &kWindowText},
};

constexpr HelpGroup kStatements{kStatementEntries};

}  // namespace

const HelpGroup& HelpStatements() { return kStatements; }
