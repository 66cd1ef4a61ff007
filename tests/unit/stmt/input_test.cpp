// INPUT: every prompt and re-type flow.
#include "program_fixture.h"

namespace {
using namespace stmt_test;

// Runs "10 <statement>" with the typed lines; returns the console output.
struct InputRun {
  InputRun(const char* statement, std::string_view typed) : capture(typed) {
    prog = Build({statement});
    result = LinkAndRun(*prog);
    ClearError();
    out = capture.Text();
  }
  ConsoleCapture capture;
  std::unique_ptr<Program> prog;
  ErrorCode result;
  std::string out;
};

TEST(Input, ContinuationPromptFillsTheRest) {
  InputRun run("10 INPUT A,B", "1\n2\n");
  EXPECT_EQ(run.out, "?1\n?2\n");
  EXPECT_EQ(Num(*run.prog, "A"), 1.0f);
  EXPECT_EQ(Num(*run.prog, "B"), 2.0f);
}

TEST(Input, ExtraInputNamesTheItemClass) {
  InputRun run("10 INPUT A", "1,2\n");
  EXPECT_EQ(run.out, "?1,2\nExtra input - warning only (12)\n");
  EXPECT_EQ(Num(*run.prog, "A"), 1.0f);
  InputRun text("10 INPUT A", "1,x\n");
  EXPECT_EQ(text.out, "?1,x\nExtra input - warning only (21)\n");
}

TEST(Input, TextForANumberRetypesFromItsItem) {
  InputRun bad("10 INPUT A", "abc\n3\n");
  EXPECT_EQ(bad.out, "?abc\nBad Input. Re-type from item 1\n??3\n");
  EXPECT_EQ(Num(*bad.prog, "A"), 3.0f);

  InputRun second("10 INPUT A,B", "1,x\n2\n");
  EXPECT_EQ(second.out, "?1,x\nBad Input. Re-type from item 2\n??2\n");
  EXPECT_EQ(Num(*second.prog, "A"), 1.0f);
  EXPECT_EQ(Num(*second.prog, "B"), 2.0f);
}

TEST(Input, BadItemRetypesFromTheFirstTarget) {
  InputRun run("10 INPUT A,B", "1,2x\n7,8\n");
  EXPECT_EQ(run.out, "?1,2x\nBad Input. Re-type from item 1\n??7,8\n");
  EXPECT_EQ(Num(*run.prog, "A"), 7.0f);
  EXPECT_EQ(Num(*run.prog, "B"), 8.0f);

  InputRun empty("10 INPUT A,B", ",5\n4,5\n");  // an empty item is bad input
  EXPECT_EQ(empty.out, "?,5\nBad Input. Re-type from item 1\n??4,5\n");
}

TEST(Input, StringTargets) {
  InputRun numbers("10 INPUT A,N$,H$", "5,7.50,0x1F\n");
  EXPECT_EQ(Num(*numbers.prog, "A"), 5.0f);
  EXPECT_EQ(Str(*numbers.prog, "N$"), "7.50");
  EXPECT_EQ(Str(*numbers.prog, "H$"), "0x1F");  // digits kept as typed

  InputRun blanks("10 INPUT S$", "   two  words   \n");
  EXPECT_EQ(Str(*blanks.prog, "S$"), "two  words");

  InputRun codes("10 INPUT S$", "\"ab\"'65\"cd\"\n");
  EXPECT_EQ(Str(*codes.prog, "S$"), "abAcd");
}

TEST(Input, NumberForms) {
  InputRun run("10 INPUT A,B,C,D", "0x1F,2.5,1E3,0\n");
  EXPECT_EQ(Num(*run.prog, "A"), 31.0f);
  EXPECT_EQ(Num(*run.prog, "B"), 2.5f);
  EXPECT_EQ(Num(*run.prog, "C"), 1000.0f);
  EXPECT_EQ(Num(*run.prog, "D"), 0.0f);
}

TEST(Input, PromptLiteralIsPrintedAsItStands) {
  InputRun run("10 INPUT \"Name\",N$", "Ann\n");
  EXPECT_EQ(run.out, "NameAnn\n");
  EXPECT_EQ(Str(*run.prog, "N$"), "Ann");
}

TEST(Input, EmptyLineEndsTheInput) {
  InputRun run("10 INPUT A,B", "1\n\n");
  EXPECT_EQ(run.result, 0u);
  EXPECT_EQ(Num(*run.prog, "A"), 1.0f);
  EXPECT_TRUE(IsUndefined(
      run.prog->variables.NumericSimple(run.prog->Table(tok::kNumVar).Find("B"))->value));
}

TEST(Input, EndOfInputEndsTheRunWithEndOfFile) {
  ConsoleCapture capture("1\n");
  auto prog = Build({"10 INPUT A,B"});
  EXPECT_EQ(LinkAndRun(*prog), 2004u);
  EXPECT_EQ(loc::Number(g_err.location), 10u);
  ClearError();
}

TEST(Input, StorageFailureOfATargetEndsTheRun) {
  ConsoleCapture capture("1,2\n");
  auto prog = Build({"10 DIM A(1)", "20 INPUT A(1),A(2)"});
  EXPECT_EQ(LinkAndRun(*prog), 1002u);
  ClearError();
}

TEST(Input, HostileLines) {
  std::string typed(100000, '9');
  typed += "\n";
  typed += std::string(100000, 'x') + "\n";
  for (int c = 1; c < 256; ++c)
    if (c != '\n') typed += static_cast<char>(c);
  typed += "\n5\n";
  InputRun run("10 INPUT A", typed);
  // The long number is cut to a line's length and still reads as one integer.
  EXPECT_EQ(run.result, 0u);
  EXPECT_GT(Num(*run.prog, "A"), 1e30f);

  InputRun text("10 INPUT A", typed.substr(100001));
  EXPECT_NE(text.out.find("Bad Input. Re-type from item 1\n??"), std::string::npos);
  EXPECT_EQ(Num(*text.prog, "A"), 5.0f);
}

TEST(Input, ParseAndListing) {
  EXPECT_EQ(Listing("INPUT \"Name\",A,B$"), "INPUT \"Name\",A,B$");
  EXPECT_EQ(Listing("INPUT A,B$(2),C$[1,2]"), "INPUT A,B$(2),C$[1,2]");
  EXPECT_EQ(ParseErrorOf("INPUT \"Name\" A"), 40u);
  EXPECT_EQ(ParseErrorOf("INPUT \"Name\","), 21u);
  EXPECT_EQ(ParseErrorOf("INPUT"), 25u);
  EXPECT_EQ(ParseErrorOf("INPUT A,"), 25u);
}

}  // namespace
