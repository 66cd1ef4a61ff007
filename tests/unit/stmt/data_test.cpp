// DATA, READ, RESTORE and ON END / OFF END.
#include "program_fixture.h"
#include "stmt/parsers.h"

namespace {
using namespace stmt_test;

TEST(Data, Listings) {
  EXPECT_EQ(Listing("DATA 1,-2.5,\"ab\",0x1F,1E10,0.1"), "DATA 1,-2.5,\"ab\",31,1E+10,0.1");
  EXPECT_EQ(Listing("DATA 3.1415927,\"\""), "DATA 3.1415927,\"\"");
  EXPECT_EQ(Listing("READ A,B$,C(2)"), "READ A,B$,C(2)");
  EXPECT_EQ(Listing("RESTORE"), "RESTORE");
  EXPECT_EQ(Listing("RESTORE 100"), "RESTORE 100");
  EXPECT_EQ(Listing("RESTORE FIN"), "RESTORE FIN:");
}

TEST(Data, ParseErrors) {
  EXPECT_EQ(ParseErrorOf("DATA"), 39u);
  EXPECT_EQ(ParseErrorOf("DATA 1,"), 39u);
  EXPECT_EQ(ParseErrorOf("DATA ABC"), 39u);
  EXPECT_EQ(ParseErrorOf("READ A,"), 25u);
  EXPECT_EQ(ParseErrorOf("READ A,,B"), 25u);
  EXPECT_EQ(ParseErrorOf("READ"), 0u);
}

TEST(Data, ReadsScatteredDataInProgramOrder) {
  auto prog = Build({"10 DATA 1,\"one\"", "20 READ A,A$,B", "30 READ B$,C", "40 DATA 2",
                     "50 DATA \"two\"", "60 DATA 3"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "A"), 1.0f);
  EXPECT_EQ(Str(*prog, "A$"), "one");
  EXPECT_EQ(Num(*prog, "B"), 2.0f);
  EXPECT_EQ(Str(*prog, "B$"), "two");
  EXPECT_EQ(Num(*prog, "C"), 3.0f);
}

TEST(Data, OutOfDataAndWrongType) {
  auto prog = Build({"10 DATA 1", "20 READ A,B"});
  EXPECT_EQ(LinkAndRun(*prog), 1011u);
  EXPECT_EQ(loc::Number(g_err.location), 20u);
  EXPECT_EQ(Num(*prog, "A"), 1.0f);  // stored before the failure

  // The mismatched item stays consumed; RESTORE rewinds to it.
  auto typed = Build({"10 DATA \"x\",5,\"y\"", "20 READ A"});
  EXPECT_EQ(LinkAndRun(*typed), 1012u);
  ASSERT_TRUE(typed->run.data.item);
  EXPECT_EQ(typed->run.data.item->number, 5.0f);
  auto rewound = Build({"10 DATA \"x\",5", "20 READ S$", "30 RESTORE", "40 READ A"});
  EXPECT_EQ(LinkAndRun(*rewound), 1012u);
  EXPECT_EQ(loc::Number(g_err.location), 40u);
  ClearError();
}

TEST(Data, RestoreToANamedStatement) {
  auto prog = Build({"10 DATA 1", "15 REM", "30 DATA 2", "40 RESTORE 15", "50 READ A", "60 RESTORE",
                     "70 READ B", "80 RESTORE 30", "90 READ C"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "A"), 2.0f);  // the first DATA after line 15
  EXPECT_EQ(Num(*prog, "B"), 1.0f);
  EXPECT_EQ(Num(*prog, "C"), 2.0f);
}

// ON and OFF hand over to these parsers after END; the statement goes in by number.
void InsertParsed(Program& prog, uint32_t number, const char* text,
                  StatementPtr (*parse)(StmtContext&)) {
  prog.StartLine(text);
  StatementPtr s = parse(prog);
  ASSERT_TRUE(s) << text;
  s->SetNumber(number);
  std::vector<StatementPtr> line;
  line.push_back(std::move(s));
  prog.InsertTyped(std::move(line));
}

TEST(Data, OnEndJumpsWhenDataRunsOut) {
  auto prog = Build({"10 DATA 1", "30 READ A,B", "40 READ D", "100 RESTORE", "110 READ C"});
  InsertParsed(*prog, 20, "THEN 100", ParseOnEnd);
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "A"), 1.0f);
  EXPECT_EQ(Num(*prog, "C"), 1.0f);
  EXPECT_TRUE(
      IsUndefined(prog->variables.NumericSimple(prog->Table(tok::kNumVar).Find("B"))->value));
  EXPECT_TRUE(
      IsUndefined(prog->variables.NumericSimple(prog->Table(tok::kNumVar).Find("D"))->value));

  InsertParsed(*prog, 25, "", ParseOffEnd);
  EXPECT_EQ(LinkAndRun(*prog), 1011u);
  ClearError();
  std::string out;
  prog->Find(20)->List(out);
  out += '|';
  prog->Find(25)->List(out);
  EXPECT_EQ(out, "ON END THEN 100|OFF END");
  EXPECT_EQ(prog->Find(20)->Code(), 0xF025u);
  EXPECT_EQ(prog->Find(25)->Code(), 0xF025u);
}

TEST(Data, OnEndErrors) {
  Program prog;
  prog.StartLine("100");
  EXPECT_FALSE(ParseOnEnd(prog));
  EXPECT_EQ(g_err.parse, 40u);
  prog.StartLine("THEN");
  EXPECT_FALSE(ParseOnEnd(prog));
  EXPECT_EQ(g_err.parse, 18u);
  SetParseError(0);
}

TEST(Data, RestoreOfAMissingStatementFailsTheLink) {
  auto prog = Build({"10 DATA 1", "20 RESTORE 99"});
  EXPECT_EQ(Link(*prog), 62u);
  EXPECT_EQ(loc::Number(g_err.location), 20u);
  ClearError();
}

TEST(Data, TypeOfNextItem) {
  auto prog = Build({"10 DATA 1,\"a\"", "20 READ A"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  ASSERT_TRUE(prog->run.data.item);
  EXPECT_EQ(prog->run.data.item->type, tok::kStrVar);
}

}  // namespace
