// Blocks, jumps and subroutines: parsing, listing, link-time matching and runs.
#include <string>
#include <vector>

#include "program_fixture.h"

namespace {
using namespace stmt_test;

// Numbers the lines 1, 2, 3... as a loader does.
std::unique_ptr<Program> BuildLines(const std::vector<std::string>& lines) {
  auto prog = std::make_unique<Program>();
  uint32_t number = 0;
  for (const std::string& text : lines) {
    SetParseError(0);
    prog->StartLine(text.c_str());
    auto line = prog->ParseLine();
    EXPECT_EQ(line.front()->ParseError(), 0u) << text;
    line.front()->SetNumber(++number);
    prog->Append(std::move(line));
  }
  SetParseError(0);
  return prog;
}

// The link error and the statement number it is reported at.
std::pair<ErrorCode, uint32_t> LinkError(Program& prog) {
  ErrorCode code = Link(prog);
  return {code, code ? loc::Number(g_err.location) : 0};
}

TEST(Flow, Listings) {
  EXPECT_EQ(Listing("FOR I = 1 TO 10"), "FOR I=1 TO 10");
  EXPECT_EQ(Listing("FOR I=1 TO 10 STEP 2"), "FOR I=1 TO 10 STEP 2");
  EXPECT_EQ(Listing("NEXT I"), "NEXT I");
  EXPECT_EQ(Listing("NEXT"), "NEXT");
  EXPECT_EQ(Listing("END WHILE"), "ENDWHILE");
  EXPECT_EQ(Listing("END IF"), "ENDIF");
  EXPECT_EQ(Listing("END SELECT"), "ENDSELECT");
  EXPECT_EQ(Listing("IF X THEN"), "IF X THEN");
  EXPECT_EQ(Listing("IF X THEN 100"), "IF X THEN 100");
  EXPECT_EQ(Listing("IF X THEN FIN"), "IF X THEN FIN:");
  EXPECT_EQ(Listing("IF X THEN A = 1"), "IF X THEN A=1");
  EXPECT_EQ(Listing("IF X THEN GOTO 20"), "IF X THEN GOTO 20");
  EXPECT_EQ(Listing("GOTO 2 OF 10, 20 ELSE FIN"), "GOTO 2 OF 10,20 ELSE FIN:");
  EXPECT_EQ(Listing("ON X GOSUB 10,20"), "ON X GOSUB 10,20");
  EXPECT_EQ(Listing("ON X RESTORE 10 ELSE 30"), "ON X RESTORE 10 ELSE 30");
  EXPECT_EQ(Listing("RESTORE X OF 10,20"), "RESTORE X OF 10,20");
  EXPECT_EQ(Listing("CASE 1, < 5, 7 TO 9, # 3"), "CASE 1,<5,7 TO 9,<>3");
  EXPECT_EQ(Listing("CASE \"A\" TO \"M\", >= \"X\""), "CASE \"A\" TO \"M\",>=\"X\"");
  EXPECT_EQ(Listing("CASE ELSE"), "CASE ELSE");
  EXPECT_EQ(Listing("SELECT A$"), "SELECT A$");
  EXPECT_EQ(Listing("SELECT A$ = \"X\""), "SELECT A$=\"X\"");
  EXPECT_EQ(Listing("ON ERROR THEN 100"), "ON ERROR THEN 100");
  EXPECT_EQ(Listing("OFF ERROR"), "OFF ERROR");
}

TEST(Flow, RefusedAfterThen) {
  for (const char* stmt :
       {"IF 1 THEN FOR I=1 TO 2", "IF 1 THEN NEXT I", "IF 1 THEN NEXT", "IF 1 THEN WHILE 1",
        "IF 1 THEN ENDWHILE", "IF 1 THEN REPEAT", "IF 1 THEN UNTIL 1", "IF 1 THEN ELSE",
        "IF 1 THEN ENDIF", "IF 1 THEN END IF", "IF 1 THEN SELECT 1", "IF 1 THEN CASE 1",
        "IF 1 THEN END SELECT", "IF 1 THEN DATA 1", "IF 1 THEN DIM A(2)", "IF 1 THEN REM X",
        "IF 1 THEN IMAGE 3D", "IF 1 THEN COM A"})
    EXPECT_EQ(ParseErrorOf(stmt), 107u) << stmt;
  EXPECT_EQ(ParseErrorOf("IF 1 THEN IF 2 THEN 10"), 116u);
  EXPECT_EQ(ParseErrorOf("FOR A(1)=1 TO 2"), 20u);
  EXPECT_EQ(ParseErrorOf("ON X PRINT 10"), 17u);
  EXPECT_EQ(ParseErrorOf("ON ERROR 100"), 40u);
  EXPECT_EQ(ParseErrorOf("ON ERROR THEN"), 18u);
}

// One case per search: the error and the statement it is reported at.
TEST(Flow, MatchingErrorsAreLocated) {
  struct Case {
    std::vector<std::string> lines;
    ErrorCode code;
    uint32_t at;
  };
  const Case cases[] = {
      {{"FOR I=1 TO 2", "FOR I=1 TO 2", "NEXT I", "NEXT I"}, 72, 2},
      {{"FOR I=1 TO 2", "NEXT J"}, 73, 2},
      {{"FOR I=1 TO 2", "X=1"}, 74, 1},
      {{"IF 1 THEN", "CASE 1", "ENDIF"}, 99, 2},
      {{"IF 1 THEN", "X=1"}, 106, 1},
      {{"IF 1 THEN", "ELSE", "NEXT"}, 80, 3},
      {{"IF 1 THEN", "ELSE", "X=1"}, 106, 2},
      {{"IF 1 THEN", "ENDWHILE", "ENDIF"}, 78, 2},
      {{"WHILE 1", "UNTIL 1"}, 85, 2},
      {{"REPEAT", "ELSE"}, 109, 2},
      {{"SELECT 1", "END SELECT"}, 91, 2},
      {{"SELECT 1", "CASE 1", "CASE \"A\"", "ENDSELECT"}, 94, 3},
      {{"SELECT \"A\"", "CASE 1", "ENDSELECT"}, 95, 2},
      {{"SELECT \"A\"", "CASE \"A\"", "ENDIF"}, 115, 3},
      {{"SELECT 1", "CASE ELSE", "CASE 2", "ENDSELECT"}, 93, 2},
      {{"SELECT 1", "CASE 1"}, 90, 1},
      // An inner failure is the outer block's failure, located where it happened.
      {{"FOR I=1 TO 2", "WHILE 1", "NEXT I"}, 76, 3},
      {{"FOR I=1 TO 2", "WHILE 1"}, 77, 2},
      {{"CASE 1"}, 89, 1},
      {{"ENDSELECT"}, 92, 1},
      {{"UNTIL 1"}, 83, 1},
      {{"REPEAT"}, 84, 1},
      {{"ELSE"}, 104, 1},
      {{"ENDIF"}, 105, 1},
      {{"NEXT I"}, 75, 1},
      {{"GOTO 2 OF 1,99"}, 62, 1},
      {{"IF 1 THEN GOSUB 99"}, 62, 1},
      {{"ON ERROR THEN 99"}, 62, 1},
  };
  for (const Case& c : cases) {
    auto prog = BuildLines(c.lines);
    EXPECT_EQ(LinkError(*prog), std::make_pair(c.code, c.at)) << c.lines[0] << "/" << c.lines[1];
  }
}

// Each link matches afresh: an edit that completes a block links.
TEST(Flow, RelinkMatchesAfresh) {
  auto prog = Build({"10 FOR I=1 TO 3", "20 S=S+I", "30 NEXT I"});
  EXPECT_EQ(LinkAndRun(*prog), 1001u);  // S is read before it is set
  prog->StartLine("5 S=0");
  prog->GetToken();
  auto line = prog->ParseLine();
  line.front()->SetNumber(5);
  prog->InsertTyped(std::move(line));
  EXPECT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "S"), 6.0f);
  std::string dump;
  prog->Find(10)->Dump(dump);
  EXPECT_EQ(dump, "CEX<20  > FOR I=1 TO 3 Next: 30  ");
}

// Nesting deeper than any native stack would take if matching recursed.
TEST(Flow, DeepNestingLinksAndRuns) {
  constexpr int kDepth = 10000;
  std::vector<std::string> lines{"C=0"};
  for (int i = 0; i < kDepth; ++i) {
    switch (i % 4) {
      case 0:
        lines.push_back("FOR A" + std::to_string(i % 1000) + "=1 TO 1");
        break;
      case 1:
        lines.push_back("IF 1 THEN");
        break;
      case 2:
        lines.push_back("REPEAT");
        break;
      default:
        lines.push_back("SELECT 1");
        lines.push_back("CASE 1");
        break;
    }
  }
  lines.push_back("C=C+1");
  for (int i = kDepth - 1; i >= 0; --i) {
    switch (i % 4) {
      case 0:
        lines.push_back("NEXT A" + std::to_string(i % 1000));
        break;
      case 1:
        lines.push_back("ENDIF");
        break;
      case 2:
        lines.push_back("UNTIL 1");
        break;
      default:
        lines.push_back("ENDSELECT");
        break;
    }
  }
  auto prog = BuildLines(lines);
  EXPECT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "C"), 1.0f);

  // Without its last closer the outermost block is the one reported.
  lines.pop_back();
  lines.push_back("X=1");
  auto broken = BuildLines(lines);
  EXPECT_EQ(LinkError(*broken), std::make_pair(ErrorCode{74}, 2u));
}

TEST(Flow, DeepIfAndFarNext) {
  std::vector<std::string> lines{"C=0"};
  lines.insert(lines.end(), 10000, "IF 1 THEN");
  lines.push_back("C=C+1");
  lines.insert(lines.end(), 10000, "ENDIF");
  auto deep = BuildLines(lines);
  EXPECT_EQ(LinkAndRun(*deep), 0u);
  EXPECT_EQ(Num(*deep, "C"), 1.0f);

  std::vector<std::string> far{"C=0", "FOR I=1 TO 2"};
  far.insert(far.end(), 100000, "C=C+1");
  far.push_back("NEXT I");
  auto prog = BuildLines(far);
  EXPECT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "C"), 200000.0f);
}

TEST(Flow, ForLoopArithmetic) {
  auto prog = Build({"10 N=0", "20 L=3", "30 FOR I=1 TO L STEP 0.5", "40 L=100", "50 N=N+1",
                     "60 NEXT I", "70 FOR J=5 TO 1 STEP -2", "80 NEXT J"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "N"), 5.0f);  // the limit is taken once
  EXPECT_EQ(Num(*prog, "I"), 3.5f);
  EXPECT_EQ(Num(*prog, "J"), -1.0f);
}

TEST(Flow, GosubStackLimit) {
  auto ok = Build({"10 D=0", "20 GOSUB 100", "30 END", "100 D=D+1", "110 IF D<100 THEN GOSUB 100",
                   "120 RETURN"});
  EXPECT_EQ(LinkAndRun(*ok), 0u);
  EXPECT_EQ(Num(*ok, "D"), 100.0f);
  auto deep = Build({"10 D=0", "20 GOSUB 100", "30 END", "100 D=D+1", "110 IF D<101 THEN GOSUB 100",
                     "120 RETURN"});
  EXPECT_EQ(LinkAndRun(*deep), 1005u);
  EXPECT_EQ(loc::Number(g_err.location), 110u);
  auto empty = Build({"10 RETURN"});
  EXPECT_EQ(LinkAndRun(*empty), 1004u);
}

TEST(Flow, ComputedRestorePicksByTruncation) {
  auto prog = Build({"10 RESTORE 2.9 OF 100,200,300", "20 READ A", "30 ON 5 RESTORE 100 ELSE 300",
                     "40 READ B", "50 RESTORE 1 OF 400", "55 READ C", "60 END", "100 DATA 1",
                     "200 DATA 2", "300 DATA 3", "400 REM"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "A"), 2.0f);
  EXPECT_EQ(Num(*prog, "B"), 3.0f);
  EXPECT_EQ(Num(*prog, "C"), 1.0f);  // no DATA after 400: reading starts over
}

}  // namespace
