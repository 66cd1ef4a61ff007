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
  EXPECT_EQ(statements, 60u);
}

TEST(StatementTable, EveryRowIsAKeywordOnce) {
  std::set<TokenCode> seen;
  for (const BasicToken* key : AllKeywords()) {
    if (tok::Category(key->Code()) != tok::kStatement) continue;
    if (std::string_view(key->Name()) == "RANDOM") continue;  // RANDOMIZE's older spelling
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

// Every data-file form is reached by "#" wherever its keyword may start a
// statement: at the start of a line and after THEN. A form missing from the
// table would leave its lines bad ("#" is no variable), as it would the plain
// forms if the table took them for file statements.
TEST(StatementTable, DataFileFormsAtTheStartAndAfterThen) {
  const char* forms[] = {"READ #1;A",     "PRINT #1;A",     "UPDATE #1;A",      "CLOSE #1",
                         "MAT READ #1;A", "MAT PRINT #1;A", "ON END #1 THEN 9", "OFF END #1",
                         "READ A",        "PRINT A",        "MAT READ A",       "MAT PRINT A",
                         "ON END THEN 9", "OFF END",        "CLOSE @1"};
  for (const char* form : forms) {
    EXPECT_EQ(test_program::ParseErrorOf(form), 0u) << form;
    EXPECT_EQ(test_program::ListingOf(form), form);
    std::string then = std::string("IF X THEN ") + form;
    EXPECT_EQ(test_program::ParseErrorOf(then.c_str()), 0u) << then;
    EXPECT_EQ(test_program::ListingOf(then.c_str()), then);
  }
  EXPECT_EQ(test_program::ListingOf("IF END #1 THEN 9"), "ON END #1 THEN 9");
  EXPECT_EQ(test_program::ListingOf("IF END THEN 9"), "ON END THEN 9");
  // The statement after THEN keeps the refusals of the table's kinds.
  EXPECT_EQ(test_program::ParseErrorOf("IF X THEN END IF"), err::kNotAfterThen);
  EXPECT_EQ(test_program::ParseErrorOf("IF X THEN FILES A"), err::kNotAfterThen);
}

}  // namespace
