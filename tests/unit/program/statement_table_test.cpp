// The statement table against the scanner's keywords: a keyword without a row,
// or a row whose routine is missing by accident, would turn every line that
// uses it into "Feature not supported".
#include "program/statement_table.h"

#include <gtest/gtest.h>

#include <set>

#include "lex/keywords.h"
#include "test_program.h"

namespace {

TEST(StatementTable, EveryKeywordHasARoutineOrIsMarkedUnsupported) {
  size_t statements = 0;
  for (const BasicToken* key : AllKeywords()) {
    if (tok::Category(key->Code()) != tok::kStatement) continue;
    ++statements;
    const KeywordStmtRow* row = StatementRowOf(key->Code());
    ASSERT_NE(row, nullptr) << key->Name();
    bool unsupported = (row->flags & stmt_kind::kUnsupported) != 0;
    EXPECT_NE(row->parse == nullptr, !unsupported) << key->Name();
  }
  EXPECT_EQ(statements, 55u);
}

TEST(StatementTable, EveryRowIsAKeywordOnce) {
  std::set<TokenCode> seen;
  for (const BasicToken* key : AllKeywords()) {
    if (tok::Category(key->Code()) != tok::kStatement) continue;
    const KeywordStmtRow* row = StatementRowOf(key->Code());
    ASSERT_NE(row, nullptr);
    EXPECT_TRUE(seen.insert(row->code).second) << key->Name();
    EXPECT_EQ(row->code, key->Code());
  }
  EXPECT_EQ(StatementRowOf(tok::kThen), nullptr);
  EXPECT_EQ(StatementRowOf(tok::kBadLineStmt), nullptr);
}

// An unsupported keyword keeps its line as a bad line with its own error.
TEST(StatementTable, UnsupportedKeywordsKeepTheirLine) {
  for (const char* text : {"OPEN #1", "CLOSE 1", "SPAWN \"X\""})
    EXPECT_EQ(test_program::ParseErrorOf(text), err::kNotSupported) << text;
  EXPECT_FALSE(RefusedAfterThen(tok::kPrint));
  EXPECT_TRUE(RefusedAfterThen(tok::kCom));
  EXPECT_FALSE(RefusedAfterThen(tok::kMat));
}

}  // namespace
