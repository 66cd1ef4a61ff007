// The spellings of old listings, RANDOMIZE among the names, and what the classic
// switch changes: the substring store, mixed brackets, keywords run into names,
// chained relations and two-subscript arrays without DIM.
#include "base/dialect.h"
#include "program_fixture.h"

namespace {

using namespace stmt_test;

// The switch on for one test, off again however the test ends.
struct ClassicOn {
  ClassicOn() { g_classic = true; }
  ~ClassicOn() { g_classic = false; }
};

TEST(ClassicSpellings, GoWordsListAsOneKeyword) {
  EXPECT_EQ(Listing("GO TO 100"), "GOTO 100");
  EXPECT_EQ(Listing("go  sub 100"), "GOSUB 100");
  EXPECT_EQ(Listing("GO TO X OF 10,20"), "GOTO X OF 10,20");
  EXPECT_EQ(Listing("ON X GO TO 10,20"), "ON X GOTO 10,20");
  EXPECT_EQ(Listing("ON X GO SUB 10 ELSE 30"), "ON X GOSUB 10 ELSE 30");
  EXPECT_EQ(Listing("IF X THEN GO TO 10"), "IF X THEN GOTO 10");
}

TEST(ClassicSpellings, GoStaysAVariableElsewhere) {
  EXPECT_EQ(Listing("GO=5"), "GO=5");
  EXPECT_EQ(Listing("FOR I=GO TO 10"), "FOR I=GO TO 10");
  EXPECT_EQ(Listing("PRINT GO"), "PRINT GO");
  EXPECT_NE(ParseErrorOf("GO 100"), 0u);
  EXPECT_NE(ParseErrorOf("GO SUBS 100"), 0u);
}

TEST(ClassicSpellings, RemRunIntoItsText) {
  EXPECT_EQ(Listing("REMARK"), "REM ARK");
  EXPECT_EQ(Listing("REMARKS: FIRST  PART"), "REM ARKS: FIRST  PART");
  EXPECT_EQ(ParseErrorOf("FIN: REMark"), 0u);
  // A word that is a good assignment stays one; REM and a digit is no remark.
  EXPECT_EQ(Listing("REMAINDER=5"), "REMAINDER=5");
  EXPECT_NE(ParseErrorOf("REM1 X"), 0u);
  EXPECT_EQ(Listing("REM  X"), "REM X");
}

TEST(ClassicSpellings, RandomizeIsAKeywordOnlyWhereAStatementStarts) {
  EXPECT_EQ(Listing("RANDOMIZE"), "RANDOMIZE");
  EXPECT_EQ(Listing("random  X*2"), "RANDOM X*2");
  EXPECT_EQ(Listing("RANDOMIZE (5)"), "RANDOMIZE (5)");
  EXPECT_EQ(Listing("IF X THEN RANDOMIZE 3"), "IF X THEN RANDOMIZE 3");
  // Assignments and names elsewhere stay what they were.
  EXPECT_EQ(Listing("RANDOM=5"), "RANDOM=5");
  EXPECT_EQ(Listing("RANDOMIZE(2)=1"), "RANDOMIZE(2)=1");
  EXPECT_EQ(Listing("PRINT RANDOM+1"), "PRINT RANDOM+1");
  EXPECT_EQ(ParseErrorOf("RANDOMIZE \"A\""), err::kBadNumericExp);
  EXPECT_EQ(ParseErrorOf("RANDOMIZE 1,2"), err::kTrailingChars);
}

TEST(ClassicBrackets, MixedClosersOnlyUnderTheSwitch) {
  const char* lines[] = {"IF ABS(Z]>9 THEN 10", "PRINT LEN[A$)", "PRINT A$[1,2)", "DEF FNA(X]=X",
                         "PRINT TAB(3];FNA[1)"};
  for (const char* line : lines) EXPECT_NE(ParseErrorOf(line), 0u) << line;
  ClassicOn on;
  EXPECT_EQ(Listing(lines[0]), "IF ABS(Z)>9 THEN 10");
  EXPECT_EQ(Listing(lines[1]), "PRINT LEN(A$)");
  EXPECT_EQ(Listing(lines[2]), "PRINT A$[1,2]");
  EXPECT_EQ(Listing(lines[3]), "DEF FNA(X)=X");
  EXPECT_EQ(Listing(lines[4]), "PRINT TAB(3);FNA(1)");
  // A bracket that closes nothing is still refused.
  EXPECT_NE(ParseErrorOf("PRINT ABS(Z"), 0u);
  EXPECT_NE(ParseErrorOf("PRINT (Z]"), 0u);
}

// The switch is read by each link: one program, linked both ways.
TEST(ClassicLoops, NextIsMatchedWhileRunningOnlyUnderTheSwitch) {
  auto prog = Build({"5 S=0", "10 FOR I=1 TO 3", "20 IF I=2 THEN 50", "30 NEXT I", "40 GOTO 70",
                     "50 S=S+I", "60 NEXT I", "70 T=I"});
  ConsoleCapture out;
  EXPECT_EQ(Link(*prog), err::kNextWithoutFor);
  {
    ClassicOn on;
    ASSERT_EQ(LinkAndRun(*prog), 0u);
    EXPECT_EQ(Num(*prog, "S"), 2.0f);
    EXPECT_EQ(Num(*prog, "T"), 4.0f);
  }
  EXPECT_EQ(Link(*prog), err::kNextWithoutFor);
}

TEST(ClassicLoops, RunTimeErrorsNameTheirStatement) {
  ClassicOn on;
  ConsoleCapture out;
  auto stray = Build({"10 FOR I=1 TO 2", "20 NEXT I", "30 NEXT I"});
  EXPECT_EQ(LinkAndRun(*stray), err::kNextWithoutFor);
  EXPECT_EQ(loc::Number(g_err.location), 30u);
  // A NEXT in a subroutine does not reach the caller's loop.
  auto outside = Build({"10 FOR I=1 TO 2", "20 GOSUB 40", "30 END", "40 NEXT I"});
  EXPECT_EQ(LinkAndRun(*outside), err::kNextWithoutFor);
  EXPECT_EQ(loc::Number(g_err.location), 40u);
  // A loop that runs no pass and has no NEXT after it.
  auto none = Build({"10 NEXT I", "20 FOR I=2 TO 1"});
  EXPECT_EQ(LinkAndRun(*none), err::kNextWithoutFor);
  auto skipped = Build({"10 GOTO 30", "20 NEXT I", "30 FOR I=2 TO 1"});
  EXPECT_EQ(LinkAndRun(*skipped), err::kForWithoutNext);
  EXPECT_EQ(loc::Number(g_err.location), 30u);
}

// Loops left by GOTO again and again, at every GOSUB level, keep one entry
// per variable and level: the stack stays small.
TEST(ClassicLoops, LeftLoopsAreReplacedNotPiledUp) {
  ClassicOn on;
  ConsoleCapture out;
  auto prog = Build({"10 FOR K=1 TO 10000", "20 FOR J=1 TO 5", "30 IF J=2 THEN 60", "40 NEXT J",
                     "50 STOP", "60 GOSUB 100", "70 NEXT K", "80 END", "100 FOR J=1 TO 3",
                     "110 GOTO 130", "120 NEXT J", "130 RETURN"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "K"), 10001.0f);
  EXPECT_LE(prog->run.loops.capacity(), 8u);
}

std::string StoreFirst(const char* value, const char* store) {
  auto prog = Build({value, store});
  ConsoleCapture out;
  EXPECT_EQ(LinkAndRun(*prog), 0u);
  return Str(*prog, "A$");
}

TEST(ClassicSubstring, FirstPositionStoreLength) {
  EXPECT_EQ(StoreFirst("10 A$=\"ABCDEFG\"", "20 A$[2]=\"Z\""), "AZC");
  g_classic = true;
  EXPECT_EQ(StoreFirst("10 A$=\"ABCDEFG\"", "20 A$[2]=\"Z\""), "AZ");
  EXPECT_EQ(StoreFirst("10 A$=\"ABC\"", "20 A$[4]=\"DE\""), "ABCDE");
  EXPECT_EQ(StoreFirst("10 A$=\"ABC\"", "20 A$[1]=\"\""), "");
  // The other forms do not change.
  EXPECT_EQ(StoreFirst("10 A$=\"ABCDE\"", "20 A$[2,3]=\"X\""), "AX DE");
  g_classic = false;
}

// Each line as typed into an old listing, and its listing under the switch.
TEST(ClassicCrunched, KeywordsRunIntoNames) {
  struct Row {
    const char* typed;
    const char* listed;
  };
  static const Row kRows[] = {
      {"FORI=1TO3STEP2", "FOR I=1 TO 3 STEP 2"},
      {"IFX>5THEN100", "IF X>5 THEN 100"},
      {"GOTO100", "GOTO 100"},
      {"GO TO100", "GOTO 100"},
      {"PRINT\"X\";TAB(5)A1", "PRINT \"X\";TAB(5) A1"},
      {"DIMA$(72),B(3,4)", "DIM A$(72),B(3,4)"},
      {"IMAGEA", "IMAGE A"},
      {"LETA=5", "LET A=5"},
      {"DEFFNA(X)=SIN(X)+FNB(X)", "DEF FNA(X)=SIN(X)+FNB(X)"},
      {"PRINTLIN(1);SPA(2);LEN(A$);CHR$(65)", "PRINT LIN(1);SPA(2);LEN(A$);CHR$(65)"},
      {"ONXGOSUB10,20", "ON X GOSUB 10,20"},
      {"IFA$=\"YES\"THEN100", "IF A$=\"YES\" THEN 100"},
      {"NEXTI", "NEXT I"},
      {"READX,Y$", "READ X,Y$"},
      {"INPUTV", "INPUT V"},
      {"MATREADA", "MAT READ A"},
      {"IFX=1THEN100", "IF X=1 THEN 100"},
      {"PRINT\"SO IFX>5THEN\"", "PRINT \"SO IFX>5THEN\""},  // text keeps its letters
      {"REMARKABLE GOTO100", "REM ARKABLE GOTO100"},
  };
  ClassicOn on;
  for (const Row& row : kRows) EXPECT_EQ(Listing(row.typed), row.listed) << row.typed;
}

TEST(ClassicCrunched, TheSwitchOffReadsAsToday) {
  EXPECT_EQ(Listing("LETA=5"), "LETA=5");  // a variable named LETA
  for (const char* line : {"FORI=1TO3", "IFX>5THEN100", "GOTO100", "DIMA$(72)", "IMAGEA"})
    EXPECT_NE(ParseErrorOf(line), 0u) << line;
}

// A line that fails the classic reading is read the ordinary way: the
// dialect's own long names and labels still work under the switch.
TEST(ClassicCrunched, LongNamesWhenTheKeywordReadingFails) {
  ClassicOn on;
  EXPECT_EQ(Listing("LET TOTAL=COUNT+1"), "LET TOTAL=COUNT+1");
  EXPECT_EQ(Listing("GOTO DONE"), "GOTO DONE:");
  EXPECT_NE(ParseErrorOf("FORI=1TO"), 0u);
  // A name longer than names keep is cut, and its listing could then read the
  // keyword way: such a line gets no second reading.
  std::string overlong = "LET " + std::string(70, 'Q') + "NR=1";
  EXPECT_NE(ParseErrorOf(overlong.c_str()), 0u);
  // Where both readings parse, the keyword reading wins.
  EXPECT_EQ(Listing("PRINT AB"), "PRINT A B");
}

TEST(ClassicRelations, ChainLeftToRightUnderTheSwitch) {
  EXPECT_EQ(ParseErrorOf("IF R1=C1=0 THEN 10"), err::kMissingDelimiter);
  EXPECT_EQ(Listing("A=B=0"), "A=B=0");
  ClassicOn on;
  EXPECT_EQ(Listing("IF R1=C1=0 THEN 10"), "IF R1=C1=0 THEN 10");
  EXPECT_EQ(Listing("A=B=0"), "A=B=0");  // still a multiple assignment
  auto prog = Build({"10 R1=2", "20 C1=3", "30 A=B=0", "40 X=(R1=C1=0)", "50 Y=1<2<3", "60 Z=3>2>1",
                     "70 W=\"A\"=\"B\"=0"});
  ConsoleCapture out;
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(Num(*prog, "A"), 0.0f);
  EXPECT_EQ(Num(*prog, "B"), 0.0f);
  EXPECT_EQ(Num(*prog, "X"), 1.0f);
  EXPECT_EQ(Num(*prog, "Y"), 1.0f);
  EXPECT_EQ(Num(*prog, "Z"), 0.0f);  // (3>2)>1 is 1>1
  EXPECT_EQ(Num(*prog, "W"), 1.0f);
}

TEST(ClassicArrays, TwoSubscriptsWithoutDimAreTenByTen) {
  ConsoleCapture out;
  auto off = Build({"10 B(2,3)=5"});
  EXPECT_EQ(LinkAndRun(*off), err::kUnknownDimensions);
  ClassicOn on;
  auto prog = Build({"10 B(10,10)=5", "20 C$(2,3)=\"X\"", "30 B(1,11)=1"});
  EXPECT_EQ(LinkAndRun(*prog), err::kSubscriptOutOfBounds);
  EXPECT_EQ(loc::Number(g_err.location), 30u);
  EXPECT_EQ(Num(*prog, "B(10,10)"), 5.0f);
  auto three = Build({"10 B(1,1,1)=5"});
  EXPECT_EQ(LinkAndRun(*three), err::kUnknownDimensions);
}

}  // namespace
