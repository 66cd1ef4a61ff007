// COM and CHAIN: declarations, the hand-over by position, and chains that
// leave nothing behind however often they happen.
#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "program_fixture.h"

namespace {

using namespace stmt_test;

class ChainRuns : public ScratchFolder {
 protected:
  static void Write(const char* name, const char* text) { std::ofstream(name) << text; }
};

TEST(Com, ListingsAndPlacement) {
  EXPECT_EQ(Listing("COM A,B$,C$[20],D(10),E$(5)[8],F(2,3)"),
            "COM A,B$,C$[20],D(10),E$(5)[8],F(2,3)");
  EXPECT_EQ(ParseErrorOf("COM A,A"), err::kDimensionedTwice);
  EXPECT_EQ(ParseErrorOf("COM"), err::kBadAllocation);
  EXPECT_EQ(ParseErrorOf("IF X THEN COM A"), err::kNotAfterThen);
  // Only remarks, comments and labels may stand before COM.
  auto prog = Build({"10 REM X", "20 COM A", "30 COM B$", "40 A=1"});
  EXPECT_EQ(LinkAndRun(*prog), 0u);
  prog = Build({"10 A=1", "20 COM B"});
  EXPECT_EQ(LinkAndRun(*prog), err::kComNotFirst);
  EXPECT_EQ(loc::Number(g_err.location), 20u);
  prog = Build({"10 COM A(5)", "20 DIM A(5)"});
  EXPECT_EQ(LinkAndRun(*prog), err::kDimensionedTwice);
  ClearError();
}

TEST(Com, ARunStartsWithFreshValues) {
  auto prog = Build({"10 COM A,B$,C(2)", "20 PRINT LEN(B$)", "30 PRINT C(1)"});
  ConsoleCapture out;
  EXPECT_EQ(LinkAndRun(*prog), err::kUndefinedValue);
  EXPECT_EQ(out.Text(), " 0    \n 0    \n");
  ClearError();
}

TEST(Chain, Listings) {
  EXPECT_EQ(Listing("CHAIN \"NEXT.BAS\""), "CHAIN \"NEXT.BAS\"");
  EXPECT_EQ(Listing("CHAIN R,A$+\".BAS\",100"), "CHAIN R,A$+\".BAS\",100");
  EXPECT_EQ(Listing("CHAIN N$,START"), "CHAIN N$,START:");
  EXPECT_EQ(ParseErrorOf("CHAIN R"), err::kMissingDelimiter);
  EXPECT_EQ(ParseErrorOf("CHAIN \"X\",0"), err::kBadStmtNumber);
  EXPECT_EQ(ParseErrorOf("CHAIN 5"), err::kBadStringExp);
}

// The shell's program survives a run that chained away from it.
TEST_F(ChainRuns, TheShellsProgramStays) {
  Write("next.bas", "10 COM X\n20 PRINT X*2\n");
  auto prog = Build({"10 COM A", "20 A=21", "30 CHAIN \"next.bas\"", "40 PRINT \"NO\""});
  ConsoleCapture out;
  EXPECT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(out.Text(), " 42   \n");
  EXPECT_TRUE(prog->HasRun());
  EXPECT_EQ(prog->Find(40)->Number(), 40u);
  // An error in the chained program names its file.
  Write("next.bas", "10 COM X\n20 PRINT Y\n");
  EXPECT_EQ(LinkAndRun(*prog), err::kUndefinedValue);
  EXPECT_EQ(g_err.file, "next.bas");
  EXPECT_EQ(loc::Number(g_err.location), 20u);
  // So does a failure to link it.
  Write("next.bas", "10 GOTO 99\n");
  EXPECT_EQ(LinkAndRun(*prog), err::kUndefinedTarget);
  EXPECT_EQ(g_err.file, "next.bas");
  ClearError();
}

// Chains leave no descriptor and no memory behind: the heap in use after 10,000
// chains is what it was after 500. S$ stops growing early, since the allocator
// keeps a few freed blocks of every size it has seen, and counts them as in use.
TEST_F(ChainRuns, ManyChainsLeaveNothingBehind) {
  ASSERT_EQ(DataFile::Create("d", 1, 8), CreateStatus::kCreated);
  Write("loop.bas",
        "10 COM N,L,S$,A(50)\n20 FILES d\n30 N=N+1\n40 IF N<=100 THEN S$=S$+\"S\"\n"
        "50 A(N-INT((N-1)/50)*50)=N\n60 PRINT #1;N\n70 IF N<L THEN CHAIN \"loop.bas\"\n");
  int descriptors = OpenDescriptors();
  auto run = [](int chains) {
    std::string limit = "30 L=" + std::to_string(chains);
    auto prog = Build({"10 COM N,L,S$,A(50)", "20 N=0", limit.c_str(), "40 CHAIN \"loop.bas\""});
    EXPECT_EQ(LinkAndRun(*prog), 0u);
    prog.reset();
    return mallinfo2().uordblks;
  };
  run(500);  // buffers that keep their largest size grow once
  [[maybe_unused]] size_t some = run(500);
  [[maybe_unused]] size_t many = run(10000);
  EXPECT_EQ(OpenDescriptors(), descriptors);
#if !defined(__SANITIZE_ADDRESS__)
  EXPECT_LE(many, some + 1024) << some;
#endif
}

}  // namespace
