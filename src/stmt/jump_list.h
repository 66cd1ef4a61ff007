// The list forms of GOTO, GOSUB and RESTORE, shared by "... OF" and "ON ...".
#pragma once
#include "expr/numeric_exp.h"
#include "stmt/statement.h"

enum class JumpKind { kGoto, kGosub, kRestore };

// Parses "<stmtId>[,<stmtId>...][ELSE <stmtId>]" after the selector and the
// keyword; onForm selects the "ON <exp> GOTO" listing over "GOTO <exp> OF".
StatementPtr ParseJumpList(StmtContext& p, JumpKind kind, NumericExpPtr selector, bool onForm);
