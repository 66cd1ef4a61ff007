// The statement table: every statement keyword with its parse routine and
// kind, and the data-file forms that "#" selects. It lives above stmt/, matrix/
// and files/ because it names the routines of all three.
#pragma once
#include "lex/token.h"
#include "stmt/statement.h"

using ParseRoutine = StatementPtr (*)(StmtContext&);

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

// Parses the statement that starts at the tokenizer's position (after any
// label); null with the parse error set when it fails.
StatementPtr ParseStatement(StmtContext& p);
// The statement of a keyword already consumed: its data-file form when "#"
// follows (or follows the word after it, as in MAT READ #), else the row's routine.
StatementPtr ParseKeywordStatement(StmtContext& p, TokenCode keyword);
// The statement after THEN: null with the parse error set (kNotAfterThen
// unless one is stored) when it fails or its kind may not stand there.
StatementPtr ParseStatementAfterThen(StmtContext& p);
