// Hostile input: malformed lines, huge names, deep nesting and random token soup
// must parse or fail cleanly, and whatever parses must list and evaluate.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "numeric_test_util.h"

namespace {

using numeric_test::LinkAll;
using numeric_test::ListOf;
using numeric_test::Parse;

class NumericRobust : public ::testing::Test {
 protected:
  void SetUp() override { g_err = ErrorState{}; }
  void TearDown() override { g_err = ErrorState{}; }
  Program prog;
};

std::string Nested(int depth, const std::string& open, const std::string& inner,
                   const std::string& close) {
  std::string line;
  for (int i = 0; i < depth; ++i) line += open;
  line += inner;
  for (int i = 0; i < depth; ++i) line += close;
  return line;
}

TEST_F(NumericRobust, MalformedLinesFailWithoutHarm) {
  const char* lines[] = {"1.2.3",  "1E",    "1E+",  "0x",    "0xG",        ".",
                         "..",     "\"abc", "'999", "'",     "\xff\x80+1", "1+\xc3\xa9",
                         "A$<\"x", "A(1,",  "A(1",  "A[1)",  "((((",       "))))",
                         "1 2",    "\t1",   "X=",   "NOT (", "2^^2"};
  for (const char* line : lines) {
    NumericExpPtr e = Parse(prog, line);
    if (e) {
      ListOf(*e);
      if (LinkAll(prog) == 0) e->Evaluate();
    }
  }
  EXPECT_EQ(Parse(prog, "\"abc"), nullptr);
  EXPECT_EQ(Parse(prog, "\xff"), nullptr);
}

TEST_F(NumericRobust, LongestNamesAreCutConsistently) {
  std::string name(2040, 'N');
  std::string line = name + "+" + name + "x";  // the first 63 characters decide
  NumericExpPtr e = Parse(prog, line.c_str());
  ASSERT_TRUE(e);
  EXPECT_EQ(ListOf(*e), std::string(63, 'N') + "+" + std::string(63, 'N'));
  EXPECT_EQ(prog.Table(tok::kNumVar).Count(), 1u);
  std::string array = std::string(2040, 'a') + "(1)";
  e = Parse(prog, array.c_str());
  ASSERT_TRUE(e);
  ASSERT_EQ(LinkAll(prog), 0u);
  SetRunError(0);
  e->Evaluate();
  EXPECT_EQ(g_err.run, 1001u);
}

TEST_F(NumericRobust, ParenthesesNestTo400Levels) {
  std::string deepest = Nested(400, "(", "1+X", ")");
  NumericExpPtr e = Parse(prog, deepest.c_str());
  ASSERT_TRUE(e);
  EXPECT_EQ(prog.Peek(), tok::kEndOfLine);
  EXPECT_EQ(ListOf(*e), deepest);
  ASSERT_EQ(LinkAll(prog), 0u);
  SetRunError(0);
  EXPECT_EQ(e->Evaluate(), 1.0f);
  e.reset();

  std::string tooDeep = Nested(401, "(", "1", ")");
  EXPECT_EQ(Parse(prog, tooDeep.c_str()), nullptr);
  EXPECT_EQ(g_err.parse, 35u);
  EXPECT_EQ(prog.Mark(), 0u);
  // A whole line of them.
  std::string line = Nested(1023, "(", "1", ")");
  ASSERT_EQ(line.size(), 2047u);
  EXPECT_EQ(Parse(prog, line.c_str()), nullptr);
  EXPECT_EQ(g_err.parse, 35u);
  std::string opens(2047, '(');
  EXPECT_EQ(Parse(prog, opens.c_str()), nullptr);
  // The guard is released: a shallow expression parses afterwards.
  EXPECT_TRUE(Parse(prog, "((2))"));
}

TEST_F(NumericRobust, SubscriptsAndMixedNestingShareTheLimit) {
  std::string subs = Nested(400, "A(", "1", ")");
  NumericExpPtr e = Parse(prog, subs.c_str());
  ASSERT_TRUE(e);
  ASSERT_EQ(LinkAll(prog), 0u);
  SetRunError(0);
  EXPECT_EQ(e->Evaluate(), 0.0f);  // A(1) is undefined, A(0) out of bounds
  EXPECT_NE(g_err.run, 0u);
  e.reset();
  std::string tooDeep = Nested(682, "A(", "1", ")");
  EXPECT_EQ(Parse(prog, tooDeep.c_str()), nullptr);
  EXPECT_EQ(g_err.parse, 35u);
  std::string mixed = Nested(500, "-(", "1", ")");
  EXPECT_EQ(Parse(prog, mixed.c_str()), nullptr);
  std::string strings = Nested(300, "(A$[", "1]=\"\")", "");
  Parse(prog, strings.c_str());
}

TEST_F(NumericRobust, LongFlatChains) {
  std::string sum = "1";
  while (sum.size() + 2 <= 2047) sum += "+1";
  NumericExpPtr e = Parse(prog, sum.c_str());
  ASSERT_TRUE(e);
  EXPECT_EQ(e->Evaluate(), 1024.0f);
  std::string powers = "X";
  while (powers.size() + 3 <= 2047) powers += "^-1";
  e = Parse(prog, powers.c_str());
  ASSERT_TRUE(e);
  ASSERT_EQ(LinkAll(prog), 0u);
  SetRunError(0);
  e->Evaluate();
  EXPECT_EQ(g_err.run, 1001u);
  std::string ors = "0";
  while (ors.size() + 6 <= 2047) ors += " OR 0";
  e = Parse(prog, ors.c_str());
  ASSERT_TRUE(e);
  EXPECT_EQ(e->Evaluate(), 0.0f);
}

// Random token soup: every tree that parses lists and re-parses to the same text.
TEST_F(NumericRobust, RandomLinesRoundTrip) {
  static const char* kPieces[] = {
      "1",     "2.5",   "0x1F",  "1E3",   "1E+20", ".5", "X",     "Y",   "A(", "B(1,",
      "(",     ")",     ")",     "+",     "-",     "*",  "/",     "^",   "**", " MOD ",
      " DIV ", " MIN ", " MAX ", "<",     "<=",    "=",  "#",     "<>",  ">=", " AND ",
      " OR ",  " XOR ", " EQV ", " NOT ", ",",     "A$", "\"s\"", "'65", "[",  "]",
      "1.2.3", "\t",    "\xff",  "fna(",  "SIN(",  " ",  "0",     "-1",  "=<", " IMP "};
  std::mt19937 rng(1234);
  std::uniform_int_distribution<size_t> piece(0, std::size(kPieces) - 1);
  std::uniform_int_distribution<int> length(1, 30);
  int parsed = 0;
  for (int round = 0; round < 5000; ++round) {
    std::string line;
    for (int n = length(rng); n > 0; --n) line += kPieces[piece(rng)];
    NumericExpPtr e = Parse(prog, line.c_str());
    if (!e) continue;
    ++parsed;
    std::string listed = ListOf(*e);
    if (LinkAll(prog) == 0) e->Evaluate();
    if (listed.find("IMP") != std::string::npos) continue;  // "AIMP B" reads back as a name
    NumericExpPtr again = Parse(prog, listed.c_str());
    ASSERT_TRUE(again) << line << " -> " << listed;
    EXPECT_EQ(ListOf(*again), listed) << line;
    EXPECT_EQ(prog.Peek(), tok::kEndOfLine) << line << " -> " << listed;
  }
  EXPECT_GT(parsed, 500);
}

}  // namespace
