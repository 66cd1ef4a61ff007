// RENUMBER in the program: the index of lines, the shared references, lines
// that hold more than one statement, refusals that change nothing, and CHAIN's
// start, which moves only when the file it names is the program's own.
#include "program/renumber.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "program/loader.h"
#include "program_fixture.h"

namespace {
using namespace stmt_test;

std::string Listing(const Program& prog) { return SavedText(prog, true); }

TEST(Renumber, OverlappingNumbersMoveWithTheirReferences) {
  auto prog = Build({"10 GOTO 30", "20 GOSUB 10", "30 IF X THEN 20"});
  RenumberRequest request;
  request.start = 20;
  RenumberReport report = RenumberLines(*prog, request);
  EXPECT_EQ(report.refusal, "");
  EXPECT_TRUE(report.notes.empty());
  EXPECT_EQ(Listing(*prog), "   20 GOTO 40\n   30 GOSUB 20\n   40 IF X THEN 30\n");
  // The index knows the new numbers only: a typed line goes between them.
  EXPECT_EQ(prog->Find(10), nullptr);
  ASSERT_NE(prog->Find(40), nullptr);
  EXPECT_EQ(prog->Find(40)->Code(), tok::kIf);
  SetParseError(0);
  prog->StartLine("REM BETWEEN");
  auto line = prog->ParseLine();
  line.front()->SetNumber(35);
  prog->InsertTyped(std::move(line));
  EXPECT_EQ(Listing(*prog),
            "   20 GOTO 40\n   30 GOSUB 20\n   35 REM BETWEEN\n   40 IF X THEN 30\n");
}

TEST(Renumber, StatementsThatContinueALineTakeItsNumber) {
  auto prog = Build({"10 FIN: X=1 ! SET", "20 GOTO 10", "30 GOTO FIN"});
  ASSERT_EQ(RenumberLines(*prog, {100, 100, 1, 999999}).refusal, "");
  for (const Statement* s = prog->First(); s != prog->EndMark(); s = s->Next())
    EXPECT_NE(s->Number(), 10u) << "a statement kept its old number";
  EXPECT_EQ(Listing(*prog), "  100 FIN: X=1 ! SET\n  200 GOTO 100\n  300 GOTO FIN:\n");
  // The program still links: every reference finds its line.
  ConsoleCapture capture;
  EXPECT_EQ(Link(*prog), 0u);
}

TEST(Renumber, RefusalsChangeNothing) {
  auto prog = Build({"10 PRINT", "20 GOTO 35", "30 PRINT", "40 END"});
  std::string before = Listing(*prog);
  uint64_t edits = prog->Edits();
  // Past 999999, onto the line before, past the line after, onto a missing
  // line that a reference names, and an empty range.
  for (RenumberRequest request :
       {RenumberRequest{999990, 5, 1, 999999}, RenumberRequest{10, 10, 20, 30},
        RenumberRequest{5, 40, 1, 30}, RenumberRequest{15, 10, 1, 30},
        RenumberRequest{10, 10, 41, 50}}) {
    EXPECT_NE(RenumberLines(*prog, request).refusal, "") << request.start << "," << request.step;
    EXPECT_EQ(Listing(*prog), before);
    EXPECT_EQ(prog->Edits(), edits);
  }
  RenumberReport report = RenumberLines(*prog, {1, 1, 1, 999999});
  EXPECT_EQ(report.refusal, "");
  EXPECT_EQ(report.notes, std::vector<std::string>{"2 GOTO 35: no line 35"});
  EXPECT_GT(prog->Edits(), edits);
}

TEST_F(ScratchFolder, ChainStartMovesWhenTheFileIsThisProgram) {
  FILE* f = fopen("self.bas", "w");
  ASSERT_NE(f, nullptr);
  fclose(f);
  auto prog = std::make_unique<Program>("./self.bas");
  const char* lines[] = {"CHAIN \"self.bas\",20", "CHAIN \"other.bas\",20", "PRINT", "CHAIN A$,20",
                         "IF X THEN CHAIN \"self.bas\",20"};
  for (uint32_t i = 0; i < std::size(lines); ++i) {
    SetParseError(0);
    prog->StartLine(lines[i]);
    auto line = prog->ParseLine();
    line.front()->SetNumber(10 * (i + 1));
    prog->Append(std::move(line));
  }
  ASSERT_EQ(RenumberLines(*prog, {1000, 1, 1, 999999}).refusal, "");
  EXPECT_EQ(Listing(*prog),
            " 1000 CHAIN \"self.bas\",1001\n 1001 CHAIN \"other.bas\",20\n 1002 PRINT\n"
            " 1003 CHAIN A$,20\n 1004 IF X THEN CHAIN \"self.bas\",1001\n");
}

TEST(Renumber, BadLinesMoveAndAreNamed) {
  auto prog = Build({"10 GOTO 2O", "20 GOTO 10"});
  RenumberReport report = RenumberLines(*prog, {});
  EXPECT_EQ(report.notes, std::vector<std::string>{"10 ?GOTO 2O: not rewritten"});
  EXPECT_EQ(Listing(*prog), "   10 GOTO 2O\n   20 GOTO 10\n");
  report = RenumberLines(*prog, {5, 5, 1, 999999});
  EXPECT_EQ(Listing(*prog), "    5 GOTO 2O\n   10 GOTO 5\n");
}

}  // namespace
