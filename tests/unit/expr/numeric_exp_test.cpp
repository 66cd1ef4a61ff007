// Numeric expressions: grammar, listing, operator semantics, evaluation order.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "numeric_test_util.h"

namespace {

using numeric_test::LinkAll;
using numeric_test::ListOf;
using numeric_test::Parse;

class NumericExpTest : public ::testing::Test {
 protected:
  void SetUp() override { g_err = ErrorState{}; }
  void TearDown() override { g_err = ErrorState{}; }

  // Parses, checks that the whole line was used, links and evaluates.
  float Eval(const char* text) {
    NumericExpPtr e = Parse(prog, text);
    EXPECT_TRUE(e) << text;
    if (!e) return NAN;
    EXPECT_EQ(prog.Peek(), tok::kEndOfLine) << text;
    EXPECT_EQ(LinkAll(prog), 0u) << text;
    return numeric_test::Run(*e);
  }
  std::string Listed(const char* text) {
    NumericExpPtr e = Parse(prog, text);
    EXPECT_TRUE(e) << text;
    return e ? ListOf(*e) : "";
  }

  Program prog;
};

TEST_F(NumericExpTest, PrecedenceAndAssociativity) {
  struct Case {
    const char* text;
    float value;
  };
  const Case cases[] = {
      {"2^3^2", 64},
      {"-2^2", -4},
      {"2^-1", 0.5f},
      {"2**3", 8},
      {"2**3^2", 64},
      {"7 MOD -2", 1},
      {"-7 MOD 2", -1},
      {"7 DIV 2", 3},
      {"-7 DIV 2", -4},
      {"7.5 DIV -2", -4},
      {"3 MIN 5+1", 3},
      {"7 MAX 5+3", 8},
      {"1<2 AND 0", 0},
      {"1 OR 1/0", 1},
      {"(1<2)+(2<3)", 2},
      {"NOT 0", 1},
      {"NOT 5", 0},
      {"NOT -0", 1},
      {"-(2)^2", -4},
      {"10-4-3", 3},
      {"64/4/2", 8},
      {"2+3*4", 14},
      {"2*3+4", 10},
      {"+5", 5},
      {"1=1 OR 1=2", 1},
      {"0 AND 1 OR 1", 1},
      {"1 XOR 1", 0},
      {"2 XOR 0", 1},
      {"0 EQV 0", 1},
      {"3 EQV 0", 0},
      {"0 IMP 0", 1},
      {"1 IMP 0", 0},
      {"1 IMP 7", 1},
      {"1 XOR 1 OR 1", 1},
      {"0 OR 0 XOR 1", 1},
      {"1 AND 0 XOR 1", 1},
      {"16777216+1", 16777216},
      {"0x10+1", 17},
      {"2 # 3", 1},
      {"2 <> 2", 0},
      {"2 =< 2", 1},
      {"3 => 4", 0},
      {"3 MIN 1 < 2", 1},
      {"5 MOD 3 * 2", 4},
      {"1E39", 3.4028235e+38f},
  };
  for (const Case& c : cases) EXPECT_EQ(Eval(c.text), c.value) << c.text;
}

TEST_F(NumericExpTest, FloatSemantics) {
  EXPECT_TRUE(std::isinf(Eval("1/0")));
  float nan = Eval("0/0");
  EXPECT_TRUE(std::isnan(nan));
  EXPECT_EQ(Eval("0/0 = 0/0"), 0);
  EXPECT_EQ(Eval("0/0 <> 0/0"), 1);
  EXPECT_EQ(Eval("NOT (0/0)"), 0);  // NaN is true
  EXPECT_EQ(Eval("0^0"), 1);
  EXPECT_TRUE(std::isnan(Eval("(-8)^(1/3)")));
  EXPECT_TRUE(std::isinf(Eval("1E38*10")));
  float negZero = Eval("-(0)");
  EXPECT_TRUE(std::signbit(negZero));
  EXPECT_EQ(Eval("1 DIV 0 > 1E38"), 1);
  EXPECT_EQ(Eval("0.1+0.2"), 0.1f + 0.2f);  // single precision throughout
  // MIN and MAX return an operand unchanged: the left one when "<" (">") holds,
  // else the right one.
  EXPECT_TRUE(std::signbit(Eval("-(0) MIN 0")) == false);
  EXPECT_TRUE(std::signbit(Eval("0 MAX -(0)")));
  EXPECT_EQ(Eval("0/0 MIN 5"), 5);
  EXPECT_EQ(Eval("0/0 MAX 5"), 5);
}

// MOD takes a whole-number path of its own; it must give fmod's bits, the
// sign of the dividend and -0 included, and leave everything else to fmod.
TEST(NumericModulo, SameBitsAsFmod) {
  const float values[] = {0.0f,
                          -0.0f,
                          1,
                          -1,
                          2,
                          -2,
                          7,
                          -7,
                          3.5f,
                          -3.5f,
                          0.1f,
                          1000,
                          -1000,
                          16777215,
                          16777216,
                          -16777216,
                          123456792,
                          2147483520.0f,
                          -2147483648.0f,
                          2147483648.0f,
                          1E30f,
                          -1E30f,
                          INFINITY,
                          -INFINITY,
                          NAN};
  for (float a : values) {
    for (float b : values) {
      float want = static_cast<float>(std::fmod(double{a}, double{b}));
      float got = MakeNumericOperator(tok::kMod, MakeNumericLit(a), MakeNumericLit(b))->Evaluate();
      uint32_t wantBits, gotBits;
      std::memcpy(&wantBits, &want, sizeof want);
      std::memcpy(&gotBits, &got, sizeof got);
      if (std::isnan(want))
        EXPECT_TRUE(std::isnan(got)) << a << " MOD " << b;
      else
        EXPECT_EQ(gotBits, wantBits) << a << " MOD " << b;
    }
  }
}

TEST_F(NumericExpTest, ListingReadsAsTyped) {
  struct Case {
    const char* text;
    const char* listing;
  };
  const Case cases[] = {
      {"X+1E+20", "X+1e+20"},
      {"1E+20+X", "1E+20+X"},
      {"X + 0.1 * 3.3", "X+0.1*3.3"},
      {"0.000015 - X", "1.5E-05-X"},
      {"X - 0.000015", "X-1.5e-05"},
      {"(A+B)*(C-D)/E", "(A+B)*(C-D)/E"},
      {"A # B", "A<>B"},
      {"A <> 2", "A<>2"},
      {"A =< B OR C => 2", "A<=B OR C>=2"},
      {"A IMP B", "AIMP B"},
      {"A XOR B EQV C", "A XOR B EQV C"},
      {"NOT A AND B", " NOT A AND B"},
      {"-A^-2", "-A^-2"},
      {"A ** 2", "A^2"},
      {"A MOD B DIV C", "A MOD B DIV C"},
      {"A MIN B MAX 3", "A MIN B MAX 3"},
      {"x(1, y) + Z[2]", "x(1,y)+Z(2)"},
      {"16777217", "16777216"},
      {"0x7FFFFFFF", "2147483648"},
      {"1E39", "3.4028235E+38"},
      {"X*-1E39", "X*-3.4028235E+38"},
      {"X^-1E39", "X^1.1754944e-38"},
      {"123456789", "123456792"},  // whole numbers list exactly as stored
      {"0.3", "0.3"},
      {"X^0.3", "X^0.3"},
      {"3.14159265", "3.1415927"},
      {"1E15", "1E+15"},
      {"1E14", "100000000000000"},
      {"A$ = B$", "A$=B$"},
  };
  for (const Case& c : cases) EXPECT_EQ(Listed(c.text), c.listing) << c.text;
}

TEST_F(NumericExpTest, FoldingIntoConstantForms) {
  // A literal right operand folds into the operator; a literal on the left stays.
  EXPECT_EQ(Parse(prog, "X*2")->Size(), Parse(prog, "X/2")->Size());
  EXPECT_LT(Parse(prog, "X+2")->Size(), Parse(prog, "X+Y")->Size());
  EXPECT_EQ(Parse(prog, "2+X")->Size(),
            Parse(prog, "Y+X")->Size() - Parse(prog, "Y")->Size() + Parse(prog, "2")->Size());
  EXPECT_EQ(Parse(prog, "X+2")->Kind(), static_cast<int>(tok::kPlus));
  EXPECT_EQ(Parse(prog, "2")->Kind(), NumericExp::kLiteral);
  EXPECT_EQ(Parse(prog, "(2)")->Kind(), NumericExp::kParens);
  EXPECT_EQ(Parse(prog, "-X")->Kind(), NumericExp::kNegate);
  EXPECT_EQ(Parse(prog, "X<>2")->Kind(), static_cast<int>(tok::kNE));
  EXPECT_EQ(Parse(prog, "X#2")->Kind(), static_cast<int>(tok::kNE));
  EXPECT_EQ(Parse(prog, "X**2")->Kind(), static_cast<int>(tok::kCaret));
}

TEST_F(NumericExpTest, RefusedForms) {
  // Unary operators do not repeat.
  for (const char* text : {"NOT NOT 0", "- -X", "-NOT 1", "NOT", "", "*2", ")", "AND 1"}) {
    EXPECT_EQ(Parse(prog, text), nullptr) << text;
    EXPECT_EQ(prog.Mark(), 0u) << text;  // nothing consumed
  }
  // A comparison does not chain: the parse stops before the second "<".
  NumericExpPtr e = Parse(prog, "1<2<3");
  ASSERT_TRUE(e);
  EXPECT_EQ(ListOf(*e), "1<2");
  EXPECT_EQ(prog.GetToken(), tok::kLT);
  e = Parse(prog, "X=1<2<3");
  ASSERT_TRUE(e);
  EXPECT_EQ(ListOf(*e), "X=1");
  // A failed right operand fails the whole expression, position restored.
  for (const char* text : {"1+2*", "1+", "2 AND NOT", "1 OR", "3 MIN", "2^", "1<", "A$<"}) {
    EXPECT_EQ(Parse(prog, text), nullptr) << text;
    EXPECT_EQ(prog.Mark(), 0u) << text;
  }
  // Only round brackets group.
  EXPECT_EQ(Parse(prog, "[1]"), nullptr);
}

TEST_F(NumericExpTest, ParseErrors) {
  EXPECT_EQ(Parse(prog, "(1+2"), nullptr);
  EXPECT_EQ(g_err.parse, 29u);
  EXPECT_EQ(Parse(prog, "((1)"), nullptr);
  EXPECT_EQ(g_err.parse, 29u);
  EXPECT_EQ(Parse(prog, "2*(3"), nullptr);
  EXPECT_EQ(g_err.parse, 29u);
  EXPECT_EQ(Parse(prog, "X+(1<2"), nullptr);
  EXPECT_EQ(g_err.parse, 29u);
  // No relational code is missing from the relation tail, so 48 cannot arise
  // from scanned input: every relation token (tok::kRelation) parses.
  for (const char* text : {"1<=2", "1=<2", "1<2", "1>=2", "1=>2", "1>2", "1<>2", "1#2", "1=2"}) {
    NumericExpPtr r = Parse(prog, text);
    ASSERT_TRUE(r) << text;
    EXPECT_EQ(prog.Peek(), tok::kEndOfLine) << text;
  }
}

// A leaf that records when it is evaluated.
class Probe final : public NumericExp {
 public:
  Probe(std::string* log, char name, float value) : log_(log), name_(name), value_(value) {}
  int Kind() const override { return 99; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += name_; }
  float Evaluate() override {
    *log_ += name_;
    return value_;
  }

 private:
  std::string* log_;
  char name_;
  float value_;
};

TEST(NumericEvaluationOrder, PerOperator) {
  struct Case {
    TokenCode op;
    float left, right;
    const char* order;
  };
  const Case cases[] = {
      {tok::kPlus, 1, 1, "RL"},
      {tok::kStar, 1, 1, "RL"},
      {tok::kMod, 1, 1, "RL"},
      {tok::kCaret, 1, 1, "RL"},
      {tok::kPower, 1, 1, "RL"},
      {tok::kMinus, 1, 1, "LR"},
      {tok::kSlash, 1, 1, "LR"},
      {tok::kDiv, 1, 1, "LR"},
      {tok::kMin, 1, 1, "LR"},
      {tok::kMax, 1, 1, "LR"},
      {tok::kEQ, 1, 1, "LR"},
      {tok::kNE, 1, 1, "LR"},
      {tok::kLT, 1, 1, "LR"},
      {tok::kLE, 1, 1, "LR"},
      {tok::kGT, 1, 1, "LR"},
      {tok::kGE, 1, 1, "LR"},
      {tok::kXor, 0, 1, "LR"},
      {tok::kXor, 1, 1, "LR"},
      {tok::kEqv, 0, 1, "LR"},
      {tok::kEqv, 1, 0, "LR"},
      // Short circuits.
      {tok::kAnd, 0, 1, "L"},
      {tok::kAnd, 2, 0, "LR"},
      {tok::kOr, 3, 1, "L"},
      {tok::kOr, 0, 0, "LR"},
      {tok::kImp, 0, 1, "L"},
      {tok::kImp, 1, 0, "LR"},
  };
  for (const Case& c : cases) {
    std::string log;
    NumericExpPtr e = MakeNumericOperator(c.op, std::make_unique<Probe>(&log, 'L', c.left),
                                          std::make_unique<Probe>(&log, 'R', c.right));
    ASSERT_TRUE(e) << std::hex << c.op;
    e->Evaluate();
    EXPECT_EQ(log, c.order) << std::hex << c.op;
  }
  EXPECT_EQ(MakeNumericOperator(tok::kNot, MakeNumericLit(1), MakeNumericLit(2)), nullptr);
}

TEST(NumericEvaluationOrder, TruthValuesAreOneOrZero) {
  std::string log;
  auto leaf = [&](float v) { return std::make_unique<Probe>(&log, 'x', v); };
  EXPECT_EQ(MakeNumericOperator(tok::kAnd, leaf(-3), leaf(0.5f))->Evaluate(), 1.0f);
  EXPECT_EQ(MakeNumericOperator(tok::kOr, leaf(0), leaf(-7))->Evaluate(), 1.0f);
  EXPECT_EQ(MakeNumericOperator(tok::kOr, leaf(-7), leaf(0))->Evaluate(), 1.0f);
  EXPECT_EQ(MakeNumericOperator(tok::kImp, leaf(4), leaf(9))->Evaluate(), 1.0f);
  EXPECT_EQ(MakeNumericOperator(tok::kXor, leaf(4), leaf(0))->Evaluate(), 1.0f);
  EXPECT_EQ(MakeNumericOperator(tok::kEqv, leaf(4), leaf(-2))->Evaluate(), 1.0f);
  EXPECT_EQ(MakeNumericOperator(tok::kGE, leaf(4), leaf(-2))->Evaluate(), 1.0f);
}

TEST_F(NumericExpTest, ShortCircuitSkipsTheRightOperand) {
  // An undefined right operand would raise 1001; a folded constant cannot.
  EXPECT_EQ(Eval("1 OR U"), 1);
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_EQ(Eval("0 AND U"), 0);
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_EQ(Eval("0 IMP U"), 1);
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_EQ(Eval("1 XOR U"), 1);
  EXPECT_EQ(g_err.run, 1001u);
}

}  // namespace
