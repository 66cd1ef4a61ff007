// IMAGE and PRINT USING as statements: parsing, listing, linking, and runs
// that allocate nothing per line.
#include <string>

#include "alloc_count.h"
#include "program_fixture.h"

namespace {

using stmt_test::Build;
using stmt_test::ConsoleCapture;
using stmt_test::LinkAndRun;
using stmt_test::Listing;
using stmt_test::ParseErrorOf;

TEST(PrintUsing, Listings) {
  EXPECT_EQ(Listing("PRINT USING 100;A,B$"), "PRINT USING 100;A,B$");
  EXPECT_EQ(Listing("print using fmt;x"), "PRINT USING fmt:;x");
  EXPECT_EQ(Listing("PRINT USING FMT:"), "PRINT USING FMT:");
  EXPECT_EQ(Listing("PRINT USING \"3d\";X*2,\"a\"<\"b\""), "PRINT USING \"3d\";X*2,\"a\"<\"b\"");
  EXPECT_EQ(Listing("PRINT USING A$+\"d\""), "PRINT USING A$+\"d\"");
  EXPECT_EQ(Listing("IMAGE   3d, \"x\"  ,'999"), "IMAGE 3d, \"x\"  ,'999");
  EXPECT_EQ(Listing("IMAGE"), "IMAGE ");
}

TEST(PrintUsing, ParseErrors) {
  EXPECT_EQ(ParseErrorOf("PRINT USING"), err::kBadUsing);
  EXPECT_EQ(ParseErrorOf("PRINT USING ;1"), err::kBadUsing);
  EXPECT_EQ(ParseErrorOf("PRINT USING (A$);1"), err::kBadUsing);
  EXPECT_EQ(ParseErrorOf("PRINT USING 1000000;1"), err::kBadUsing);
  EXPECT_EQ(ParseErrorOf("PRINT USING 10,1"), err::kMissingSemicolon);
  EXPECT_EQ(ParseErrorOf("PRINT USING 10;"), err::kBadExpression);
  EXPECT_EQ(ParseErrorOf("PRINT USING 10;1,"), err::kBadExpression);
  EXPECT_EQ(ParseErrorOf("PRINT USING 10;1;2"), err::kTrailingChars);
  EXPECT_EQ(ParseErrorOf("IF X THEN IMAGE 3d"), err::kNotAfterThen);
  EXPECT_EQ(ParseErrorOf("IF X THEN PRINT USING 10;X"), 0u);
  EXPECT_EQ(ParseErrorOf("IMAGE '999,("), 0u);  // format errors wait for the run
}

TEST(PrintUsing, TheLinkNamesAnImage) {
  ConsoleCapture out;
  auto rem = Build({"10 REM not a format", "20 PRINT USING 10;1"});
  EXPECT_EQ(LinkAndRun(*rem), err::kNotImage);
  auto missing = Build({"20 PRINT USING 30;1"});
  EXPECT_EQ(LinkAndRun(*missing), err::kUndefinedTarget);
  auto labels = Build({"10 PRINT USING F;1", "20 PRINT USING G;2", "30 F: IMAGE \"f\",d",
                       "40 G:", "50 IMAGE \"g\",d", "60 H: REM", "70 PRINT USING H;3"});
  EXPECT_EQ(LinkAndRun(*labels), err::kNotImage);
  labels->Delete(labels->Find(70));
  EXPECT_EQ(LinkAndRun(*labels), 0u);
  EXPECT_EQ(out.Text(), "f1\ng2\n");
}

// Lines after the first reuse the statement's buffers, with a format from an
// IMAGE and from a string alike.
long AllocationsOfLoop(int count) {
  std::string text;
  text.reserve(1 << 20);
  auto old = InstallConsole(MakeStringConsole(&text, ""));
  std::string n = "5 N=" + std::to_string(count);
  auto prog = Build({n.c_str(), "10 IMAGE 4d,x,-08.2d,x,5.3a,\"|\"", "15 F$=\"s5d,/\"",
                     "16 S$=\"abcdef\"", "20 FOR I=1 TO N", "30 PRINT USING 10;I,I/3,S$,I*2",
                     "40 PRINT USING F$;-I", "50 NEXT I"});
  EXPECT_EQ(Link(*prog), 0u);
  long before = AllocationCount();
  EXPECT_EQ(Run(*prog, true), 0u);
  long allocations = AllocationCount() - before;
  InstallConsole(std::move(old));
  // Zero fill after a left-justified number, as the fill rule has it.
  EXPECT_EQ(text.substr(0, 39), "   1 0.330000   abc|   2  |\n   -1\n\n   2");
  return allocations;
}

TEST(PrintUsing, RunsAllocateNothingPerLine) {
  EXPECT_EQ(AllocationsOfLoop(10), AllocationsOfLoop(2000));
}

}  // namespace
