// CONVERT in both directions, and its branch for text that is no number.
#include "program_fixture.h"

namespace {
using namespace stmt_test;

// The number CONVERT makes of text (without quotes), or the error it raises.
ErrorCode Converted(const std::string& text, float* value) {
  std::string line = "10 CONVERT \"" + text + "\" TO X";
  auto prog = Build({line.c_str()});
  ErrorCode code = LinkAndRun(*prog);
  ClearError();
  if (!code) *value = Num(*prog, "X");
  return code;
}

TEST(Convert, TextToNumber) {
  const std::pair<const char*, float> numbers[] = {
      {"12", 12},      {" -12.5e1 ", -125}, {"+.5", 0.5f}, {"1E3", 1000},  {"0x1F", 31},
      {"-0XfF", -255}, {"3.", 3},           {"007", 7},    {"1e38", 1e38f}};
  for (auto [text, expected] : numbers) {
    float value = -1;
    EXPECT_EQ(Converted(text, &value), 0u) << text;
    EXPECT_EQ(value, expected) << text;
  }
  for (const char* text : {"", "  ", "abc", "1x", "1 2", "--1", "1e", "1e+", ".", "0x", "0xg",
                           "inf", "nan", "1e39", "-1e999", "1,5"}) {
    float value;
    EXPECT_EQ(Converted(text, &value), err::kDataWrongType) << text;
  }
}

TEST(Convert, BranchForTextThatIsNoNumber) {
  ConsoleCapture capture;
  auto prog =
      Build({"10 X=5", "20 CONVERT \"five\" TO X,FIN", "30 PRINT \"no\"", "40 FIN: PRINT X"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(capture.Text(), " 5    \n");
  auto missing = Build({"10 CONVERT \"1\" TO X,99"});
  EXPECT_EQ(Link(*missing), err::kUndefinedTarget);
  ClearError();
}

TEST(Convert, NumberToTextAsPrintWritesIt) {
  ConsoleCapture capture;
  auto prog = Build({"10 CONVERT 5 TO A$", "20 CONVERT -1000 TO B$", "30 CONVERT 40000 TO C$",
                     "40 CONVERT 1/3 TO D$", "50 CONVERT 1E10 TO E$", "60 E$(2)=\"xxxxx\"",
                     "70 CONVERT 42 TO E$(2)[2,3]"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Str(*prog, "A$"), "5");
  EXPECT_EQ(Str(*prog, "B$"), "-1000");
  EXPECT_EQ(Str(*prog, "C$"), "40000.");
  EXPECT_EQ(Str(*prog, "D$"), "0.33333");
  EXPECT_EQ(Str(*prog, "E$"), "1.00000E+10");
  EXPECT_EQ(Str(*prog, "E$(2)"), "x42xx");
}

TEST(Convert, ParseAndListing) {
  for (const char* text :
       {"CONVERT A$ TO X", "CONVERT A$[2]+\"1\" TO X(2),100", "CONVERT X+1 TO A$",
        "CONVERT LEN(A$) TO B$(2)[1,2]", "CONVERT A$ TO X,FIN:"})
    EXPECT_EQ(Listing(text), text);
  EXPECT_EQ(ParseErrorOf("CONVERT"), err::kBadExpression);
  EXPECT_EQ(ParseErrorOf("CONVERT A$ TO"), err::kBadNumericVar);
  EXPECT_EQ(ParseErrorOf("CONVERT A$ TO B$"), err::kBadNumericVar);
  EXPECT_EQ(ParseErrorOf("CONVERT A$ TO X,"), err::kBadStmtNumber);
  EXPECT_EQ(ParseErrorOf("CONVERT X A$"), err::kMissingDelimiter);
  EXPECT_EQ(ParseErrorOf("CONVERT X TO Y"), err::kBadStringVar);
}

}  // namespace
