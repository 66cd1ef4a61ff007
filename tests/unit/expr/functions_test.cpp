// Built-in numeric functions: parsing, listing and evaluation.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <string>

#include "expr/random.h"
#include "platform/system_clock.h"
#include "program/program.h"
#include "test_program.h"

namespace {

class FunctionsTest : public ::testing::Test {
 protected:
  // Parses and binds an expression; null when the parse fails.
  NumericExpPtr Parse(const char* text) {
    SetParseError(0);
    prog_.StartLine(text);
    NumericExpPtr e = ParseNumericExp(prog_);
    if (e) test_program::LinkReferences(prog_);
    return e;
  }
  float Eval(const char* text) {
    NumericExpPtr e = Parse(text);
    EXPECT_TRUE(e) << text << " error " << g_err.parse;
    if (!e) return NAN;
    SetRunError(0);
    return e->Evaluate();
  }
  // The parse error of a line that must fail.
  ErrorCode ErrorOf(const char* text) {
    EXPECT_FALSE(Parse(text)) << text;
    return g_err.parse;
  }
  std::string Listing(const char* text) {
    NumericExpPtr e = Parse(text);
    std::string out;
    if (e) e->List(out);
    return out;
  }
  void TearDown() override {
    SetParseError(0);
    ClearError();
  }

  Program prog_;
};

TEST_F(FunctionsTest, RoundingFamily) {
  EXPECT_EQ(Eval("INT(-1.5)"), -2.0f);
  EXPECT_EQ(Eval("INT(2.7)"), 2.0f);
  EXPECT_EQ(Eval("FIX(-1.5)"), -1.0f);
  EXPECT_EQ(Eval("FIX(2.7)"), 2.0f);
  EXPECT_EQ(Eval("ABS(-3.25)"), 3.25f);
  EXPECT_EQ(Eval("SGN(-0)"), 0.0f);
  EXPECT_EQ(Eval("SGN(-7)"), -1.0f);
  EXPECT_EQ(Eval("SGN(0.001)"), 1.0f);
}

TEST_F(FunctionsTest, LibraryFunctionsRoundToFloat) {
  EXPECT_EQ(Eval("SQR(2)"), static_cast<float>(std::sqrt(2.0)));
  EXPECT_EQ(Eval("EXP(1)"), static_cast<float>(std::exp(1.0)));
  EXPECT_EQ(Eval("ATN(1)*4"), static_cast<float>(std::atan(1.0)) * 4);
  EXPECT_EQ(Eval("SIN(0.5)"), static_cast<float>(std::sin(0.5)));
  EXPECT_EQ(Eval("COS(0.5)"), static_cast<float>(std::cos(0.5)));
  EXPECT_EQ(Eval("TAN(0.5)"), static_cast<float>(std::tan(0.5)));
  EXPECT_EQ(Eval("PI()"), 3.1415927f);
  // No domain errors: the library's infinities and NaNs come through.
  EXPECT_EQ(Eval("LOG(0)"), -INFINITY);
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_TRUE(std::isnan(Eval("SQR(-1)")));
  EXPECT_EQ(g_err.run, 0u);
}

TEST_F(FunctionsTest, StringArguments) {
  EXPECT_EQ(Eval("LEN(\"HELLO\")"), 5.0f);
  EXPECT_EQ(Eval("LEN(\"\")"), 0.0f);
  EXPECT_EQ(Eval("NUM(\"\")"), 0.0f);
  EXPECT_EQ(Eval("ASC(\"A\")"), 65.0f);
  EXPECT_EQ(Eval("NUM('200\"X\")"), -56.0f);  // signed bytes
  EXPECT_EQ(Eval("DEC(\"12.5ABC\")"), 12.5f);
  EXPECT_EQ(Eval("DEC(\"  -3E2\")"), -300.0f);
  EXPECT_EQ(Eval("DEC(\"X1\")"), 0.0f);
  EXPECT_EQ(Eval("POS(\"ABCABC\",\"CA\")"), 3.0f);
  EXPECT_EQ(Eval("POS(\"ABC\",\"\")"), 0.0f);
  EXPECT_EQ(Eval("POS(\"\",\"A\")"), 0.0f);
  EXPECT_EQ(Eval("POS(\"ABC\",\"D\")"), 0.0f);
  EXPECT_EQ(Eval("POS(\"ABC\",\"ABC\")"), 1.0f);
}

TEST_F(FunctionsTest, VersionParts) {
  EXPECT_EQ(Eval("VER(0)"), 94154.0f);
  EXPECT_EQ(Eval("VER(1)"), 0.0f);
  EXPECT_EQ(Eval("VER(2.4)"), 94.0f);
  EXPECT_EQ(Eval("VER(3)"), 154.0f);
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_EQ(Eval("VER(4)"), 0.0f);
  EXPECT_EQ(g_err.run, 1014u);
  EXPECT_EQ(Eval("VER(-1)"), 0.0f);
  EXPECT_EQ(g_err.run, 1014u);
}

TEST_F(FunctionsTest, TimeSelectors) {
  float minute = Eval("TIM(-0.4)");  // rounds to selector 0
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_GE(minute, 0.0f);
  EXPECT_LE(minute, 59.0f);
  float month = Eval("TIM(7)");
  EXPECT_GE(month, 0.0f);
  EXPECT_LE(month, 11.0f);
  EXPECT_GE(Eval("TIM(2)"), 1.0f);
  EXPECT_GE(Eval("TIM(8)"), 120.0f);  // years since 1900
  float epoch = Eval("TIM(10)");
  EXPECT_NEAR(epoch, static_cast<float>(std::time(nullptr)), 256.0f);
  EXPECT_GE(Eval("TIM(11)"), 0.0f);
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_EQ(Eval("TIM(11.6)"), 0.0f);
  EXPECT_EQ(g_err.run, 1014u);
}

// A clock stopped at 1700000000.250 seconds, started 1.35 seconds earlier.
class FixedClock final : public SystemClock {
 public:
  TimePoint Now() const override { return At(1700000000250); }
  TimePoint Started() const override { return At(1699999998900); }
  uint32_t ProcessId() const override { return 4242; }

 private:
  static TimePoint At(int64_t ms) { return TimePoint(std::chrono::milliseconds(ms)); }
};

TEST_F(FunctionsTest, TimeAndTaskReadTheInstalledClock) {
  auto old = InstallClock(std::make_unique<FixedClock>());
  EXPECT_EQ(Eval("TIM(10)"), 1700000000.0f);
  EXPECT_EQ(Eval("TIM(11)"), 1350.0f);
  EXPECT_EQ(Eval("TIM(4)"), 20.0f);  // seconds past the minute, in every time zone
  EXPECT_EQ(Eval("TID(0)"), 4242.0f);
  // Tuesday 14 November 2023, 22:13:20 in UTC: each selector its own part.
  std::string zone = getenv("TZ") ? getenv("TZ") : "";
  setenv("TZ", "UTC", 1);
  tzset();
  const float parts[] = {13, 22, 318, 23, 20, 2, 14, 10, 123, 0};
  for (int n = 0; n < 10; ++n) {
    std::string call = "TIM(" + std::to_string(n) + ")";
    EXPECT_EQ(Eval(call.c_str()), parts[n]) << call;
  }
  zone.empty() ? unsetenv("TZ") : setenv("TZ", zone.c_str(), 1);
  tzset();
  InstallClock(std::move(old));
  EXPECT_EQ(Eval("TID(0)"), static_cast<float>(getpid()));
}

TEST_F(FunctionsTest, TypeOfNextData) {
  EXPECT_EQ(Eval("TYP(0)"), 3.0f);
  DataItem number{tok::kNumVar, 1.0f, ""}, text{tok::kStrVar, 0.0f, "A"};
  prog_.run.data.item = &number;
  EXPECT_EQ(Eval("TYP(0)"), 1.0f);
  prog_.run.data.item = &text;
  EXPECT_EQ(Eval("TYP(0.2)"), 2.0f);
  // A file that is not open, and a number that names no file.
  EXPECT_EQ(Eval("TYP(1)"), 3.0f);
  EXPECT_EQ(g_err.run, 2003u);
  EXPECT_EQ(Eval("TYP(-17)"), 3.0f);
  EXPECT_EQ(g_err.run, 2001u);
  prog_.run.data.item = nullptr;
}

TEST_F(FunctionsTest, UnevaluatedArguments) {
  // An argument that would fail shows it is never evaluated.
  EXPECT_EQ(Eval("BRK(X)"), 0.0f);
  EXPECT_EQ(Eval("SYS(X)"), 0.0f);
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_GT(Eval("TID(X)"), 0.0f);
  EXPECT_EQ(g_err.run, 0u);
}

TEST_F(FunctionsTest, RandomSequenceFollowsTheGenerator) {
  uint32_t s = static_cast<uint32_t>(-1000);  // RND(-1) seeds with trunc(-1 * 1000)
  auto next = [&s] {
    s = s * 214013u + 2531011u;
    return (static_cast<float>((s >> 16) & 0x7FFF) + 32767.0f) / 32768.0f - 1.0f;
  };
  NumericExpPtr seed = Parse("RND(-1)");
  NumericExpPtr draw = Parse("RND(1)");
  ASSERT_TRUE(seed && draw);
  float first = seed->Evaluate();
  EXPECT_EQ(first, next());
  for (int i = 0; i < 5; ++i) EXPECT_EQ(draw->Evaluate(), next());
  // The same negative seed starts the same sequence, whatever happened since.
  SeedRandomFromClock();
  EXPECT_EQ(seed->Evaluate(), first);
  for (int i = 0; i < 100; ++i) {
    float r = draw->Evaluate();
    EXPECT_GE(r, -1.0f / 32768);
    EXPECT_LT(r, 1.0f);
  }
}

TEST_F(FunctionsTest, ParseErrors) {
  EXPECT_EQ(ErrorOf("ABS 1"), 28u);
  EXPECT_EQ(ErrorOf("ABS(1"), 29u);
  EXPECT_EQ(ErrorOf("PI(1)"), 29u);
  EXPECT_EQ(ErrorOf("POS(\"A\" \"B\")"), 40u);
  EXPECT_EQ(ErrorOf("ITM 1"), 28u);
  EXPECT_EQ(ErrorOf("REC(1"), 29u);
  EXPECT_FALSE(Parse("LEN(1)"));
  // A successful call leaves no error behind.
  EXPECT_TRUE(Parse("ABS(1)"));
  EXPECT_EQ(g_err.parse, 0u);
}

TEST_F(FunctionsTest, Listing) {
  EXPECT_EQ(Listing("abs( x +1 )"), "ABS(x+1)");  // names keep their first spelling
  EXPECT_EQ(Listing("PI()*2"), "PI()*2");
  EXPECT_EQ(Listing("ASC(\"A\")+NUM(\"B\")"), "ASC(\"A\")+NUM(\"B\")");
  EXPECT_EQ(Listing("POS(A$,\"X\")"), "POS(A$,\"X\")");
  EXPECT_EQ(Listing("TIM(0)+RND(-1)"), "TIM(0)+RND(-1)");
}

}  // namespace

namespace {

// LEN reports the bytes a program holds: every argument of every function counts,
// so a longer argument makes the whole expression larger by at least its growth.
TEST_F(FunctionsTest, EveryArgumentCountsInTheSize) {
  const std::string text = "\"" + std::string(200, 'x') + "\"";
  std::string sum = "1";
  for (int i = 0; i < 50; ++i) sum += "+1";
  struct Form {
    const char* before;
    const char* after;
    bool numeric;  // the argument is a number, not a string
  };
  const Form forms[] = {
      {"LEN(", ")", false},
      {"DEC(", ")", false},
      {"NUM(", ")", false},
      {"POS(", ",\"B\")", false},
      {"POS(\"AB\",", ")", false},
      {"LEN(UPS$(", "))", false},
      {"LEN(LEFT$(", ",1))", false},
      {"LEN(MID$(", ",1,1))", false},
      {"LEN(RIGHT$(", ",1))", false},
      {"LEN(CHR$(", "))", true},
      {"LEN(DEC$(", "))", true},
      {"LEN(LEFT$(\"A\",", "))", true},
      {"LEN(MID$(\"A\",1,", "))", true},
      {"SIN(", ")", true},
      {"RND(", ")", true},
      {"ABS(", ")", true},
      {"A(", ")", true},
      {"A(1,", ")", true},
      {"LEN(B$(", "))", true},
      {"LEN(C$[", "])", true},
  };
  for (const Form& f : forms) {
    std::string small = std::string(f.before) + (f.numeric ? "1" : "\"A\"") + f.after;
    std::string large = std::string(f.before) + (f.numeric ? sum : text) + f.after;
    NumericExpPtr a = Parse(small.c_str()), b = Parse(large.c_str());
    ASSERT_TRUE(a && b) << small;
    // Unsigned: a part subtracted instead of added wraps round to a huge size.
    size_t growth = b->Size() - a->Size();
    EXPECT_GE(growth, 199u) << large;
    EXPECT_LT(growth, 4000u) << large;
  }
}

}  // namespace
