// Built-in string functions: counts, positions, conversions and listing.
#include <gtest/gtest.h>

#include <string>

#include "program/program.h"
#include "test_program.h"

namespace {

class StringFunctionsTest : public ::testing::Test {
 protected:
  StringExpPtr Parse(const char* text) {
    SetParseError(0);
    prog_.StartLine(text);
    StringExpPtr e = ParseStringExp(prog_);
    if (e) test_program::LinkReferences(prog_);
    return e;
  }
  std::string Eval(const char* text) {
    StringExpPtr e = Parse(text);
    EXPECT_TRUE(e) << text << " error " << g_err.parse;
    if (!e) return "?";
    SetRunError(0);
    return std::string(e->Evaluate(work_));
  }
  void TearDown() override {
    SetParseError(0);
    ClearError();
  }

  Program prog_;
  StringValue work_;
};

TEST_F(StringFunctionsTest, CaseAndCharacters) {
  EXPECT_EQ(Eval("UPS$(\"abc-xyz 1\")"), "ABC-XYZ 1");
  EXPECT_EQ(Eval("UPS$('228\"a\")"),
            "\xE4"
            "A");  // plain ASCII letters only
  EXPECT_EQ(Eval("CHR$(65.4)"), "A");
  EXPECT_EQ(Eval("CHR$(64.5)"), "A");  // rounds half up
  EXPECT_EQ(Eval("CHR$(321)"), "A");   // modulo 256
  EXPECT_EQ(Eval("CHR$(0)"), std::string(1, '\0'));
  EXPECT_EQ(Eval("CHR$(-1)"), "\xFF");
}

TEST_F(StringFunctionsTest, NumberToText) {
  EXPECT_EQ(Eval("DEC$(1.5)"), "1.5");
  EXPECT_EQ(Eval("DEC$(-12)"), "-12");
  EXPECT_EQ(Eval("DEC$(1234567)"), "1.23457e+06");
  EXPECT_EQ(Eval("DEC$(0.0001)"), "0.0001");
}

TEST_F(StringFunctionsTest, LeftAndRight) {
  EXPECT_EQ(Eval("LEFT$(\"ABCDEF\",2)"), "AB");
  EXPECT_EQ(Eval("LEFT$(\"ABCDEF\",2.9)"), "AB");  // truncates
  EXPECT_EQ(Eval("LEFT$(\"ABCDEF\",10)"), "ABCDEF");
  EXPECT_EQ(Eval("LEFT$(\"ABCDEF\",-1)"), "ABCDEF");  // unsigned: very large
  EXPECT_EQ(Eval("LEFT$(\"ABCDEF\",0)"), "");
  EXPECT_EQ(Eval("RIGHT$(\"ABCDEF\",2)"), "EF");
  EXPECT_EQ(Eval("RIGHT$(\"ABCDEF\",6)"), "ABCDEF");
  EXPECT_EQ(Eval("RIGHT$(\"ABCDEF\",0)"), "");
  EXPECT_EQ(Eval("RIGHT$(\"ABCDEF\",-3)"), "");
}

TEST_F(StringFunctionsTest, Mid) {
  EXPECT_EQ(Eval("MID$(\"ABCDEF\",3)"), "CDEF");
  EXPECT_EQ(Eval("MID$(\"ABCDEF\",7)"), "");
  EXPECT_EQ(Eval("MID$(\"ABCDEF\",2,3)"), "BCD");
  EXPECT_EQ(Eval("MID$(\"ABCDEF\",5,9)"), "EF");  // no padding
  EXPECT_EQ(Eval("MID$(\"ABCDEF\",2,-1)"), "BCDEF");
  EXPECT_EQ(Eval("MID$(\"ABCDEF\",-2,2)"), "");  // unsigned: beyond the end
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_EQ(Eval("MID$(\"ABCDEF\",0,2)"), "");
  EXPECT_EQ(g_err.run, 1009u);
  EXPECT_EQ(Eval("MID$(\"ABCDEF\",0.9)"), "");  // truncates to 0
  EXPECT_EQ(g_err.run, 1009u);
}

TEST_F(StringFunctionsTest, NestedCallsShareTheWorkBuffer) {
  EXPECT_EQ(Eval("UPS$(MID$(\"abcdef\",2,3))+LEFT$(CHR$(66)+\"cd\",2)"), "BCDBc");
  EXPECT_EQ(Eval("MID$(UPS$(\"xyz\")+\"!\",3)"), "Z!");
}

TEST_F(StringFunctionsTest, ParseErrorsAndListing) {
  EXPECT_FALSE(Parse("UPS$ \"A\""));
  EXPECT_EQ(g_err.parse, 28u);
  EXPECT_FALSE(Parse("LEFT$(\"A\" 1)"));
  EXPECT_EQ(g_err.parse, 40u);
  EXPECT_FALSE(Parse("MID$(\"A\",1,2"));
  EXPECT_EQ(g_err.parse, 29u);
  StringExpPtr e = Parse("mid$( a$ ,2 , 3)+left$(\"x\",1)+dec$(x)");
  ASSERT_TRUE(e);
  std::string out;
  e->List(out);
  EXPECT_EQ(out, "MID$(a$,2,3)+LEFT$(\"x\",1)+DEC$(x)");
}

}  // namespace
