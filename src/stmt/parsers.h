// Parse routines of the statement keywords; each family lives in its own file.
// A routine is called with the keyword consumed and returns the statement, or
// null with the parse error set (a line that fails is kept as a bad line).
#pragma once
#include "expr/numeric_exp.h"
#include "stmt/statement.h"

using ParseRoutine = StatementPtr (*)(Program&);

// What the statement table says of a keyword besides its parse routine.
namespace stmt_kind {
inline constexpr unsigned kBlock = 1u << 0;        // opens, divides or closes a block
inline constexpr unsigned kInert = 1u << 1;        // does nothing when run
inline constexpr unsigned kUnsupported = 1u << 2;  // accepted only as text: kept as a bad line
}  // namespace stmt_kind

struct KeywordStmtRow {
  TokenCode code;
  ParseRoutine parse;  // null exactly when the row is kUnsupported
  unsigned flags;      // stmt_kind bits
};

// The statement table's row of a keyword code, or null.
const KeywordStmtRow* StatementRowOf(TokenCode keyword);
// Block statements and statements that do nothing when run may not follow THEN.
bool RefusedAfterThen(TokenCode keyword);

StatementPtr ParseLet(Program& p);         // assign.cpp
StatementPtr ParseImpliedLet(Program& p);  // assign.cpp: a line without keyword
StatementPtr ParsePrint(Program& p);       // print.cpp
StatementPtr ParsePrintUsing(Program& p);  // print_using.cpp: after PRINT USING
StatementPtr ParseImage(Program& p);
StatementPtr ParseIf(Program& p);  // if.cpp
StatementPtr ParseElse(Program& p);
StatementPtr ParseEndIf(Program& p);
StatementPtr ParseFor(Program& p);  // for_next.cpp
StatementPtr ParseNext(Program& p);
StatementPtr ParseWhile(Program& p);  // while_repeat.cpp
StatementPtr ParseEndWhile(Program& p);
StatementPtr ParseRepeat(Program& p);
StatementPtr ParseUntil(Program& p);
StatementPtr ParseSelect(Program& p);  // select.cpp
StatementPtr ParseCase(Program& p);
StatementPtr ParseEndSelect(Program& p);
StatementPtr ParseGoto(Program& p);  // branch.cpp
StatementPtr ParseGosub(Program& p);
StatementPtr ParseReturn(Program& p);
StatementPtr ParseOn(Program& p);  // on_off.cpp: dispatches on the word after ON
StatementPtr ParseOff(Program& p);
StatementPtr ParseOnEnd(Program& p);    // data.cpp: ON END THEN target (END consumed)
StatementPtr ParseOffEnd(Program& p);   // data.cpp: OFF END (END consumed)
StatementPtr ParseRestore(Program& p);  // data.cpp
// branch.cpp: RESTORE <selector> OF <targets> [ELSE <target>], selector parsed.
StatementPtr ParseRestoreOf(Program& p, NumericExpPtr selector);
StatementPtr ParseData(Program& p);
StatementPtr ParseRead(Program& p);
StatementPtr ParseStop(Program& p);  // end_stop.cpp
StatementPtr ParseEnd(Program& p);
StatementPtr ParseSleep(Program& p);
StatementPtr ParseRem(Program& p);      // simple_stmts.cpp
StatementPtr ParseDim(Program& p);      // dim.cpp
StatementPtr ParseCom(Program& p);      // dim.cpp
StatementPtr ParseChain(Program& p);    // chain.cpp
StatementPtr ParseDef(Program& p);      // def.cpp
StatementPtr ParseInput(Program& p);    // input.cpp
StatementPtr ParseMat(Program& p);      // mat_assign.cpp; its READ, INPUT and PRINT in mat_io.cpp
StatementPtr ParseLinput(Program& p);   // linput.cpp
StatementPtr ParseConvert(Program& p);  // convert.cpp
StatementPtr ParseEnter(Program& p);    // enter.cpp

// graphics.cpp: the eight statements written with "@" and a GDI number.
StatementPtr ParseWindow(Program& p);
StatementPtr ParseClose(Program& p);
StatementPtr ParseColor(Program& p);
StatementPtr ParseMoveTo(Program& p);
StatementPtr ParseLineTo(Program& p);
StatementPtr ParseUpdate(Program& p);
StatementPtr ParseShow(Program& p);
StatementPtr ParseHide(Program& p);

// files.cpp and file_io.cpp: data files.
StatementPtr ParseFiles(Program& p);
StatementPtr ParseAssign(Program& p);
StatementPtr ParseCreate(Program& p);
StatementPtr ParsePurge(Program& p);
StatementPtr ParseCloseFile(Program& p);   // CLOSE #n ("CLOSE" consumed)
StatementPtr ParseReadFile(Program& p);    // READ #... ("READ" consumed)
StatementPtr ParsePrintFile(Program& p);   // PRINT #...
StatementPtr ParseUpdateFile(Program& p);  // UPDATE #...
StatementPtr ParseAdvance(Program& p);
StatementPtr ParseLock(Program& p);
StatementPtr ParseUnlock(Program& p);
StatementPtr ParseOnEndFile(Program& p);   // ON END #... or IF END #... ("END" consumed)
StatementPtr ParseOffEndFile(Program& p);  // OFF END #...
// mat_file.cpp: whole arrays through a file ("MAT READ" or "MAT PRINT" consumed).
StatementPtr ParseMatReadFile(Program& p);
StatementPtr ParseMatPrintFile(Program& p);

// classic.cpp: the spellings of old listings.
// Consumes the keyword, or GO and TO (kGoto) or GO and SUB (kGosub) in two words.
bool AcceptGo(Program& p, TokenCode keyword);
StatementPtr ParseClassicGo(Program& p);  // GO TO or GO SUB at a statement's start
StatementPtr ParseRemWord(Program& p);    // REM run into its remark: REMARK ...
