// Symbol tables: codes, case rules, buckets, long names and the size cap.
#include <gtest/gtest.h>

#include <string>

#include "lex/tokenizer.h"

namespace {

TEST(Symbols, CodesCountUpFromTheBaseAndAreNeverReused) {
  SymbolTable table(0x3000);
  const VarToken* abc = table.FindOrCreate("abc");
  ASSERT_NE(abc, nullptr);
  EXPECT_EQ(abc->Code(), 0x3000u);
  EXPECT_EQ(table.FindOrCreate("ABC"), abc);
  EXPECT_EQ(table.FindOrCreate("Abc"), abc);
  EXPECT_STREQ(abc->Name(), "abc");
  EXPECT_EQ(table.FindOrCreate("abd")->Code(), 0x3001u);
  EXPECT_EQ(table.FindOrCreate("ab")->Code(), 0x3002u);  // a prefix is another name
  EXPECT_EQ(table.Find("AB")->Code(), 0x3002u);
  EXPECT_EQ(table.Find("abcd"), nullptr);
  EXPECT_EQ(table.Count(), 3u);
}

TEST(Symbols, WalkGoesBucketByBucketInInsertionOrder) {
  SymbolTable table(0x1000);
  for (const char* name : {"_z", "b2", "A", "b1", "z", "9x", "a2"}) table.FindOrCreate(name);
  EXPECT_EQ(BucketOf("_z"), 26);
  EXPECT_EQ(BucketOf("\xE9t"), 26);
  EXPECT_EQ(BucketOf("b"), 1);
  std::string order;
  table.Walk([&](const VarToken& v) { order += std::string(v.Name()) + " "; });
  EXPECT_EQ(order, "A a2 b2 b1 z _z 9x ");
}

TEST(Symbols, TheFirst63CharactersDecide) {
  std::string base(63, 'q');
  SymbolTable table(0x1000);
  const VarToken* v = table.FindOrCreate(base + "first");
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(std::string(v->Name()), base);
  EXPECT_EQ(table.FindOrCreate(base + "SECOND"), v);
  EXPECT_EQ(table.Find(base), v);
  EXPECT_EQ(table.Find(std::string(2047, 'Q')), v);
  EXPECT_EQ(table.Find(base.substr(1)), nullptr);
  EXPECT_EQ(table.Count(), 1u);
}

// A cut string name still lists as a string name, so its program reads back.
TEST(Symbols, ACutStringNameKeepsItsDollar) {
  std::string base(63, 's');
  SymbolTable table(0x2000);
  const VarToken* v = table.FindOrCreate(base + "tail$");
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(std::string(v->Name()), base + "$");
  EXPECT_EQ(table.Find(base + "$"), v);
  EXPECT_EQ(table.Find(base + "other$"), v);
  EXPECT_EQ(table.Find(base), nullptr);
}

TEST(Symbols, ATableHoldsAtMost4096Names) {
  SymbolTable table(0x6000);
  for (int i = 0; i < 4096; ++i) {
    const VarToken* v = table.FindOrCreate("n" + std::to_string(i));
    ASSERT_NE(v, nullptr);
    ASSERT_EQ(v->Code(), 0x6000u + i);
  }
  EXPECT_EQ(table.FindOrCreate("one_more"), nullptr);
  EXPECT_EQ(table.FindOrCreate("N4095")->Code(), 0x6FFFu);
  EXPECT_EQ(table.Count(), 4096u);
}

TEST(Symbols, ATokenizerKeepsSixIndependentTables) {
  Tokenizer t;
  t.StartLine("A A(1) A$ A$(1) FNA(1) FNA$(1) B");
  std::string codes;
  for (TokenCode c = t.GetToken(); c != tok::kEndOfLine; c = t.GetToken())
    if (c >= 0x1000 && c < 0x8000)
      codes += std::to_string(c >> 12) + ":" + std::to_string(c & 0xFFF) + " ";
  EXPECT_EQ(codes, "1:0 3:0 2:0 4:0 7:0 6:0 1:1 ");
  EXPECT_EQ(t.SymbolStorage(), 7 * sizeof(VarToken));
  // A table full of names leaves the word unresolved rather than leaking into
  // the next category.
  for (int i = 0; i < 4096; ++i) t.Table(tok::kNumArray).FindOrCreate("x" + std::to_string(i));
  t.StartLine("newname(1)");
  EXPECT_EQ(t.GetToken(), tok::kWordBracket);
  EXPECT_EQ(t.Symbol(), nullptr);
}

}  // namespace
