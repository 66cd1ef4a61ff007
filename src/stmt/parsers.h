// Parse routines of the statement keywords; each family lives in its own file.
// A routine is called with the keyword consumed and returns the statement, or
// null with the parse error set (a line that fails is kept as a bad line).
#pragma once
#include "expr/numeric_exp.h"
#include "stmt/statement.h"

StatementPtr ParseLet(StmtContext& p);         // assign.cpp
StatementPtr ParseImpliedLet(StmtContext& p);  // assign.cpp: a line without keyword
StatementPtr ParsePrint(StmtContext& p);       // print.cpp
StatementPtr ParsePrintUsing(StmtContext& p);  // print_using.cpp: after PRINT USING
StatementPtr ParseImage(StmtContext& p);
StatementPtr ParseIf(StmtContext& p);  // if.cpp
StatementPtr ParseElse(StmtContext& p);
StatementPtr ParseEndIf(StmtContext& p);
StatementPtr ParseFor(StmtContext& p);  // for_next.cpp
StatementPtr ParseNext(StmtContext& p);
StatementPtr ParseWhile(StmtContext& p);  // while_repeat.cpp
StatementPtr ParseEndWhile(StmtContext& p);
StatementPtr ParseRepeat(StmtContext& p);
StatementPtr ParseUntil(StmtContext& p);
StatementPtr ParseSelect(StmtContext& p);  // select.cpp
StatementPtr ParseCase(StmtContext& p);
StatementPtr ParseEndSelect(StmtContext& p);
StatementPtr ParseGoto(StmtContext& p);  // branch.cpp
StatementPtr ParseGosub(StmtContext& p);
StatementPtr ParseReturn(StmtContext& p);
StatementPtr ParseOn(StmtContext& p);  // on_off.cpp: dispatches on the word after ON
StatementPtr ParseOff(StmtContext& p);
StatementPtr ParseOnEnd(StmtContext& p);    // data.cpp: ON END THEN target (END consumed)
StatementPtr ParseOffEnd(StmtContext& p);   // data.cpp: OFF END (END consumed)
StatementPtr ParseRestore(StmtContext& p);  // data.cpp
// branch.cpp: RESTORE <selector> OF <targets> [ELSE <target>], selector parsed.
StatementPtr ParseRestoreOf(StmtContext& p, NumericExpPtr selector);
StatementPtr ParseData(StmtContext& p);
StatementPtr ParseRead(StmtContext& p);
StatementPtr ParseStop(StmtContext& p);  // end_stop.cpp
StatementPtr ParseEnd(StmtContext& p);
StatementPtr ParseSleep(StmtContext& p);
StatementPtr ParseRem(StmtContext& p);        // simple_stmts.cpp
StatementPtr ParseDim(StmtContext& p);        // dim.cpp
StatementPtr ParseCom(StmtContext& p);        // dim.cpp
StatementPtr ParseChain(StmtContext& p);      // chain.cpp
StatementPtr ParseDef(StmtContext& p);        // def.cpp
StatementPtr ParseInput(StmtContext& p);      // input.cpp
StatementPtr ParseLinput(StmtContext& p);     // linput.cpp
StatementPtr ParseConvert(StmtContext& p);    // convert.cpp
StatementPtr ParseEnter(StmtContext& p);      // enter.cpp
StatementPtr ParseRandomize(StmtContext& p);  // randomize.cpp: RANDOMIZE or RANDOM
StatementPtr ParseTrace(StmtContext& p);      // trace.cpp: TRACE ON, TRACE OFF
StatementPtr ParseTron(StmtContext& p);
StatementPtr ParseTroff(StmtContext& p);

// graphics.cpp: the eight statements written with "@" and a GDI number.
StatementPtr ParseWindow(StmtContext& p);
StatementPtr ParseClose(StmtContext& p);
StatementPtr ParseColor(StmtContext& p);
StatementPtr ParseMoveTo(StmtContext& p);
StatementPtr ParseLineTo(StmtContext& p);
StatementPtr ParseUpdate(StmtContext& p);
StatementPtr ParseShow(StmtContext& p);
StatementPtr ParseHide(StmtContext& p);

// classic.cpp: the spellings of old listings.
// Consumes the keyword, or GO and TO (kGoto) or GO and SUB (kGosub) in two words.
bool AcceptGo(StmtContext& p, TokenCode keyword);
StatementPtr ParseClassicGo(StmtContext& p);  // GO TO or GO SUB at a statement's start
StatementPtr ParseRemWord(StmtContext& p);    // REM run into its remark: REMARK ...
