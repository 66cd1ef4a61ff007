// CONTINUE and TRACE in the run driver: where a halted run goes on, what it
// keeps, and the trace flag that shares the run loop's one test per statement.
#include <deque>
#include <utility>

#include "console/console_backend.h"
#include "console/key_source.h"
#include "platform/break_flag.h"
#include "program_fixture.h"

namespace {
using namespace stmt_test;

// Typed lines; a line marked so presses Ctrl+C as it arrives, or instead of arriving.
class BreakingLines final : public KeySource {
 public:
  enum Break { kNo, kWithTheLine, kInsteadOfIt };
  explicit BreakingLines(std::deque<std::pair<Break, std::string>> lines)
      : lines_(std::move(lines)) {}
  int WaitKey(int) override { return kEnd; }
  bool DeliversLines() const override { return true; }
  int WaitLine(char* line, int) override {
    if (lines_.empty()) return kEnd;
    auto [press, text] = lines_.front();
    if (press != kNo) g_breakFlag.fetch_or(async::kBreak);
    if (press == kInsteadOfIt) {
      lines_.front().first = kNo;
      return kNone;
    }
    lines_.pop_front();
    text.copy(line, text.size());
    line[text.size()] = '\0';
    return static_cast<int>(text.size());
  }

 private:
  std::deque<std::pair<Break, std::string>> lines_;
};

struct Session {
  explicit Session(std::deque<std::pair<BreakingLines::Break, std::string>> typed = {}) {
    old = InstallConsole(std::make_unique<Console>(
        MakeStringBackend(&out), std::make_unique<BreakingLines>(std::move(typed))));
  }
  ~Session() {
    InstallConsole(std::move(old));
    SetTracing(false);
    ClearError();
  }
  std::string Take() {
    TheConsole().Flush();
    return std::exchange(out, "");
  }
  std::string out;
  std::unique_ptr<Console> old;
};

TEST(Continue, StopKeepsLoopsSubroutinesAndVariables) {
  Session session;
  auto prog = Build({"5 S=0", "10 FOR I=1 TO 3", "20 GOSUB 100", "30 NEXT I", "40 PRINT \"SUM\";S",
                     "50 END", "100 S=S+I", "110 STOP", "120 RETURN"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  for (int stop = 2; stop <= 3; ++stop) {
    ASSERT_NE(prog->run.resume, nullptr);
    EXPECT_EQ(prog->run.resume->Number(), 120u);
    EXPECT_EQ(Continue(*prog, TheConsole()), 0u);
  }
  EXPECT_EQ(Num(*prog, "I"), 3.0f);
  EXPECT_EQ(Continue(*prog, TheConsole()), 0u);
  EXPECT_EQ(session.Take(), "SUM 6    \n");
  EXPECT_EQ(prog->run.resume, nullptr);  // END: nothing to go on with
}

TEST(Continue, ABreakResumesAfterTheStatementOrAtTheOneItCut) {
  Session session({{BreakingLines::kWithTheLine, "1"}, {BreakingLines::kInsteadOfIt, "2"}});
  auto prog = Build({"10 INPUT A", "20 INPUT B", "30 PRINT A+B"});
  // The first INPUT is answered, and the break after it stops before line 20.
  EXPECT_EQ(LinkAndRun(*prog), err::kBreak);
  ASSERT_NE(prog->run.resume, nullptr);
  EXPECT_EQ(prog->run.resume->Number(), 20u);
  ClearError();
  // The second is cut short while it waits: it asks again.
  EXPECT_EQ(Continue(*prog, TheConsole()), err::kBreak);
  ASSERT_NE(prog->run.resume, nullptr);
  EXPECT_EQ(prog->run.resume->Number(), 20u);
  ClearError();
  EXPECT_EQ(Continue(*prog, TheConsole()), 0u);
  EXPECT_EQ(session.Take(), "?1\n??2\n 3    \n");
}

TEST(Continue, ErrorsAndTheEndOfTheProgramLeaveNothingToGoOn) {
  Session session;
  auto prog = Build({"10 PRINT 1", "20 STOP", "30 PRINT X"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  ASSERT_NE(prog->run.resume, nullptr);
  EXPECT_EQ(Continue(*prog, TheConsole()), err::kUndefinedValue);
  EXPECT_EQ(prog->run.resume, nullptr);
  ClearError();
  auto ends = Build({"10 STOP"});
  ASSERT_EQ(LinkAndRun(*ends), 0u);
  EXPECT_EQ(ends->run.resume->Code(), tok::kEndMarkStmt);
  EXPECT_EQ(Continue(*ends, TheConsole()), 0u);
  EXPECT_EQ(ends->run.resume, nullptr);  // the end mark is no STOP
  // A new link forgets a stopped run.
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  ASSERT_NE(prog->run.resume, nullptr);
  EXPECT_EQ(Link(*prog), 0u);
  EXPECT_EQ(prog->run.resume, nullptr);
}

TEST(Trace, NumbersComeBeforeTheirStatementsOutput) {
  Session session({{BreakingLines::kNo, "7"}});
  auto prog = Build({"10 PRINT \"A\";", "20 TRACE ON", "30 INPUT N", "40 PRINT N;",
                     "50 IF N>5 THEN 70", "60 PRINT \"NO\"", "70 TROFF", "80 PRINT \"B\""});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  // The line read by INPUT keeps the trace on: the flag survives the reader's tests.
  EXPECT_EQ(session.Take(), "A[30]?7\n[40] 7    [50][70]B\n");
  EXPECT_FALSE(Tracing());
  SetTracing(true);
  EXPECT_FALSE(TestAndClearBreak());
  EXPECT_TRUE(Tracing());
  auto again = Build({"10 X=1", "20 TRACE OFF", "30 X=2"});
  ASSERT_EQ(LinkAndRun(*again), 0u);
  EXPECT_EQ(session.Take(), "[10][20]");
}

}  // namespace
