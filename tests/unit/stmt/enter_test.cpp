// ENTER through the timed line reader, with a clock that the test moves: an
// answer in time, too late and of the wrong type, and a break while waiting.
#include <utility>
#include <vector>

#include "console/console_backend.h"
#include "console/key_source.h"
#include "platform/break_flag.h"
#include "program_fixture.h"

namespace {
using namespace stmt_test;

// Every look at the clock moves it on a quarter of a second.
int64_t g_now = 0;
int64_t QuarterSteps() { return g_now += 250; }

// Typed lines, each arriving after a number of empty polls.
class SlowLines final : public KeySource {
 public:
  explicit SlowLines(std::vector<std::pair<int, std::string>> lines) : lines_(std::move(lines)) {}
  int WaitKey(int) override { return kEnd; }
  bool DeliversLines() const override { return true; }
  int WaitLine(char* line, int) override {
    if (next_ == lines_.size()) return kEnd;
    auto& [polls, text] = lines_[next_];
    if (polls < 0) g_breakFlag = 1;  // Ctrl+C instead of the line
    if (polls-- > 0 || polls < -1) return kNone;
    ++next_;
    text.copy(line, text.size());
    line[text.size()] = '\0';
    return static_cast<int>(text.size());
  }

 private:
  std::vector<std::pair<int, std::string>> lines_;
  size_t next_ = 0;
};

struct EnterRun {
  EnterRun(std::initializer_list<const char*> lines,
           std::vector<std::pair<int, std::string>> typed) {
    auto con = std::make_unique<Console>(MakeStringBackend(&out),
                                         std::make_unique<SlowLines>(std::move(typed)));
    con->SetClock(QuarterSteps);
    old = InstallConsole(std::move(con));
    prog = Build(lines);
    result = LinkAndRun(*prog);
    ClearError();
    TheConsole().Flush();
  }
  ~EnterRun() { InstallConsole(std::move(old)); }
  std::string out;
  std::unique_ptr<Console> old;
  std::unique_ptr<Program> prog;
  ErrorCode result;
};

TEST(Enter, AnsweredInTimeTooLateAndOfTheWrongType) {
  // Two seconds are eight quarter steps; the reader looks at the clock once per
  // poll. The second line comes after ten polls: too late for the second ENTER,
  // in time for the third.
  EnterRun run({"10 ENTER 2,R,A", "20 B=7", "30 ENTER 2,S,B", "40 ENTER 2,T,C", "50 ENTER 2,U,D"},
               {{0, "12"}, {10, "13"}, {2, "abc"}});
  ASSERT_EQ(run.result, 0u);
  EXPECT_EQ(Num(*run.prog, "A"), 12.0f);
  EXPECT_EQ(Num(*run.prog, "R"), 1.0f);     // under a second counts as one
  EXPECT_EQ(Num(*run.prog, "S"), -256.0f);  // the time ran out; B kept its value
  EXPECT_EQ(Num(*run.prog, "B"), 7.0f);
  EXPECT_EQ(Num(*run.prog, "C"), 13.0f);
  EXPECT_EQ(Num(*run.prog, "T"), 2.0f);
  EXPECT_EQ(Num(*run.prog, "U"), -2.0f);  // negated: "abc" is no number, and D stays undefined
  EXPECT_TRUE(IsUndefined(
      run.prog->variables.NumericSimple(run.prog->Table(tok::kNumVar).Find("D"))->value));
  EXPECT_EQ(run.out, "12\n13\nabc\n");
}

TEST(Enter, StringTargetsAndThePort) {
  EnterRun run({"10 ENTER #P,5,R,A$", "20 ENTER #Q", "30 ENTER 5,S,B$", "40 ENTER 5,T,C$"},
               {{0, "  two words "}, {0, "\"x\",\"y\""}, {0, ""}});
  ASSERT_EQ(run.result, 0u);
  EXPECT_EQ(Num(*run.prog, "P"), 0.0f);
  EXPECT_EQ(Num(*run.prog, "Q"), 0.0f);
  EXPECT_EQ(Str(*run.prog, "A$"), "two words");
  EXPECT_LT(Num(*run.prog, "S"), 0.0f);  // two items are no single answer
  EXPECT_EQ(Str(*run.prog, "B$"), "");
  EXPECT_GT(Num(*run.prog, "T"), 0.0f);  // an empty line is an empty string
}

TEST(Enter, TimeLimitsOutsideOneTo255) {
  for (const char* limit : {"0", "256", "-1", "1E30", "0/0", "0.4"}) {
    EnterRun run({(std::string("10 ENTER ") + limit + ",R,A").c_str()}, {{0, "1"}});
    EXPECT_EQ(run.result, err::kArgOutOfRange) << limit;
  }
  EnterRun edges({"10 ENTER 0.5,R,A", "20 ENTER 255.4,S,B"}, {{0, "1"}, {0, "2"}});
  EXPECT_EQ(edges.result, 0u);
}

TEST(Enter, BreakAndEndOfInput) {
  EnterRun broken({"10 ENTER 9,R,A", "20 A=1"}, {{-1, "5"}});
  EXPECT_EQ(broken.result, err::kBreak);
  EXPECT_FALSE(BreakPending());
  EnterRun ended({"10 ENTER 9,R,A"}, {});
  EXPECT_EQ(ended.result, err::kFileEnd);
}

TEST(Enter, ParseAndListing) {
  for (const char* text :
       {"ENTER 10,R,A", "ENTER T+1,R(2),A$[2,3]", "ENTER #P", "ENTER #P,B2,B1,C$"})
    EXPECT_EQ(Listing(text), text);
  EXPECT_EQ(ParseErrorOf("ENTER"), err::kBadNumericExp);
  EXPECT_EQ(ParseErrorOf("ENTER 10"), err::kMissingDelimiter);
  EXPECT_EQ(ParseErrorOf("ENTER 10,\"R\",A"), err::kBadNumericVar);
  EXPECT_EQ(ParseErrorOf("ENTER 10,R,"), err::kBadTarget);
  EXPECT_EQ(ParseErrorOf("ENTER #"), err::kBadNumericVar);
  EXPECT_EQ(ParseErrorOf("ENTER #P,10"), err::kMissingDelimiter);
}

}  // namespace
