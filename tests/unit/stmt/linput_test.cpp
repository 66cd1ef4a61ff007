// LINPUT: whole typed lines into strings, substrings and array elements.
#include "program_fixture.h"

namespace {
using namespace stmt_test;

TEST(Linput, TakesTheLineAsTyped) {
  ConsoleCapture capture("  a, \"b\" ,c  \n\nxyz\n");
  auto prog = Build(
      {"10 LINPUT A$", "20 LINPUT \"Name: \",B$", "30 A$(2)=\"-----\"", "40 LINPUT A$(2)[2,3]"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Str(*prog, "A$"), "  a, \"b\" ,c  ");
  EXPECT_EQ(Str(*prog, "B$"), "");  // an empty line is an empty string
  EXPECT_EQ(Str(*prog, "A$(2)"), "-xy--");
  EXPECT_EQ(capture.Text(), "?  a, \"b\" ,c  \nName: \n?xyz\n");
}

TEST(Linput, LongLinesAndTheEndOfInput) {
  std::string line(Console::kLineMax, 'q');
  ConsoleCapture capture(line + "tail\n");
  auto prog = Build({"10 LINPUT A$", "20 LINPUT B$"});
  EXPECT_EQ(LinkAndRun(*prog), err::kFileEnd);
  EXPECT_EQ(loc::Number(g_err.location), 20u);
  ClearError();
  EXPECT_EQ(Str(*prog, "A$"), line);  // a longer line keeps its first 2047 characters
}

TEST(Linput, ParseAndListing) {
  EXPECT_EQ(Listing("LINPUT A$"), "LINPUT A$");
  EXPECT_EQ(Listing("LINPUT \"Say\",A$(I)[2]"), "LINPUT \"Say\",A$(I)[2]");
  EXPECT_EQ(ParseErrorOf("LINPUT"), err::kBadStringVar);
  EXPECT_EQ(ParseErrorOf("LINPUT A"), err::kBadStringVar);
  EXPECT_EQ(ParseErrorOf("LINPUT \"Say\" A$"), err::kMissingDelimiter);
  EXPECT_EQ(ParseErrorOf("LINPUT A$,B$"), err::kTrailingChars);
}

}  // namespace
