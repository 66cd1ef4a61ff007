// DEF FN definitions and calls: parsing, link-time binding and the call frames.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <string>

#include "program/program.h"
#include "program/run.h"

namespace {

class UserFuncTest : public ::testing::Test {
 protected:
  // Stores "NUMBER statement" lines; every line must parse.
  void Lines(std::initializer_list<const char*> lines) {
    for (const char* text : lines) {
      SetParseError(0);
      prog_.StartLine(text);
      ASSERT_EQ(prog_.GetToken(), tok::kInteger) << text;
      auto number = static_cast<uint32_t>(std::strtoul(std::string(prog_.Text()).c_str(), 0, 10));
      auto line = prog_.ParseLine();
      ASSERT_EQ(line.front()->ParseError(), 0u) << text;
      line.front()->SetNumber(number);
      prog_.Append(std::move(line));
    }
  }
  // The parse error a DEF statement typed alone gets.
  ErrorCode DefError(const char* text) {
    Program prog;
    SetParseError(0);
    prog.StartLine(text);
    auto line = prog.ParseLine();
    EXPECT_EQ(prog.params, nullptr) << text;
    return line.front()->ParseError();
  }
  std::string DefListing(const char* text) {
    Program prog;
    prog.StartLine(text);
    auto line = prog.ParseLine();
    std::string out;
    line.front()->List(out);
    return out;
  }
  // Parses an expression after the program was linked, as the shell's
  // immediate PRINT does, binding only the new references.
  template <typename Exp, typename ParseFn>
  std::unique_ptr<Exp> Expression(const char* text, ParseFn parse, ErrorCode* linkError) {
    SetParseError(0);
    Reference* last = prog_.References().Last();
    prog_.StartLine(text);
    std::unique_ptr<Exp> e = parse(prog_);
    *linkError = 0;
    for (Reference* r = last ? last->Next() : prog_.References().First(); e && r; r = r->Next())
      if (ErrorCode code = r->Link(prog_); code && !*linkError) *linkError = code;
    return e;
  }
  float Num(const char* text) {
    ErrorCode linkError;
    auto e = Expression<NumericExp>(text, ParseNumericExp, &linkError);
    EXPECT_TRUE(e) << text;
    EXPECT_EQ(linkError, 0u) << text;
    if (!e || linkError) return NAN;
    SetRunError(0);
    return e->Evaluate();
  }
  std::string Str(const char* text) {
    ErrorCode linkError;
    auto e = Expression<StringExp>(text, ParseStringExp, &linkError);
    EXPECT_TRUE(e) << text;
    EXPECT_EQ(linkError, 0u) << text;
    if (!e || linkError) return "?";
    SetRunError(0);
    StringValue work;
    return std::string(e->Evaluate(work));
  }
  ErrorCode LinkErrorOf(const char* text) {
    ErrorCode linkError;
    auto e = Expression<NumericExp>(text, ParseNumericExp, &linkError);
    EXPECT_TRUE(e) << text;
    return linkError;
  }
  void TearDown() override {
    SetParseError(0);
    ClearError();
  }

  Program prog_;
};

TEST_F(UserFuncTest, NumericCalls) {
  Lines({"10 DEF FNA(X)=X*2", "20 DEF FNB()=5", "30 DEF FNH(X,Y)=SQR(X*X+Y*Y)"});
  ASSERT_EQ(Link(prog_), 0u);
  EXPECT_EQ(Num("FNA(3)"), 6.0f);
  EXPECT_EQ(Num("FNB()+1"), 6.0f);
  EXPECT_EQ(Num("FNH(3,4)"), 5.0f);
  EXPECT_EQ(Num("FNA(FNA(FNB()))"), 20.0f);  // arguments are evaluated in the caller's frame
  EXPECT_TRUE(prog_.calls.Idle());
}

TEST_F(UserFuncTest, ParametersShadowGlobalsOnlyInTheBody) {
  Lines({"10 X=100", "20 Y=7", "30 DEF FNA(X)=X+Y", "40 DEF FNG(Y)=FNA(Y*10)+Y"});
  ASSERT_EQ(Link(prog_), 0u);
  ASSERT_EQ(::Run(prog_, true), 0u);
  EXPECT_EQ(Num("FNA(1)"), 8.0f);
  EXPECT_EQ(Num("X"), 100.0f);
  // Inside FNA, Y is the global 7, not FNG's parameter.
  EXPECT_EQ(Num("FNG(2)"), 29.0f);
}

TEST_F(UserFuncTest, StringCalls) {
  Lines({"10 DEF FNJ$(A$,N,B$)=A$+LEFT$(B$,N)", "20 DEF FNI$(S$)=S$", "30 DEF FNL(S$)=LEN(S$)"});
  ASSERT_EQ(Link(prog_), 0u);
  EXPECT_EQ(Str("FNJ$(\"ab\",2,\"cdef\")"), "abcd");
  EXPECT_EQ(Str("FNI$(\"x\")+FNI$(\"y\")"), "xy");  // each result is copied out of its frame
  EXPECT_EQ(Str("FNI$(FNJ$(\"p\",1,\"qr\"))"), "pq");
  EXPECT_EQ(Num("FNL(\"four\")+FNL(\"\")"), 4.0f);
  EXPECT_TRUE(prog_.calls.Idle());
}

TEST_F(UserFuncTest, RecursionIsRefusedAtTheSecondEntryOfACallSite) {
  Lines({"10 DEF FNF(N)=N*FNF(N-1)", "20 DEF FNC(N)=N"});
  ASSERT_EQ(Link(prog_), 0u);
  EXPECT_EQ(Num("FNF(3)"), 0.0f);
  EXPECT_EQ(g_err.run, 1010u);
  // Other call sites are unaffected and the frames are unwound.
  EXPECT_EQ(Num("FNC(2)"), 2.0f);
  EXPECT_TRUE(prog_.calls.Idle());
  // The same call site twice in one expression is not recursion.
  EXPECT_EQ(Num("FNC(FNC(3))"), 3.0f);
}

TEST_F(UserFuncTest, RunAfterRecursionErrorStartsClean) {
  Lines({"10 DEF FNF(N)=N*FNF(N-1)", "20 Z=FNF(2)"});
  ASSERT_EQ(Link(prog_), 0u);
  EXPECT_EQ(::Run(prog_, true), 1010u);
  ClearError();
  ASSERT_EQ(Link(prog_), 0u);
  EXPECT_EQ(::Run(prog_, true), 1010u);
  EXPECT_EQ(loc::Number(g_err.location), 20u);
}

TEST_F(UserFuncTest, LinkErrors) {
  Lines({"10 DEF FNA(X,B$)=X", "20 DEF FNS$(X)=\"s\""});
  ASSERT_EQ(Link(prog_), 0u);
  EXPECT_EQ(LinkErrorOf("FNB(1)"), 64u);
  EXPECT_EQ(LinkErrorOf("FNA(1)"), 66u);
  EXPECT_EQ(LinkErrorOf("FNA(\"x\",1)"), 66u);
  EXPECT_EQ(LinkErrorOf("FNA(1,\"x\",2)"), 66u);
  EXPECT_EQ(LinkErrorOf("FNA(1,\"x\")"), 0u);
  EXPECT_EQ(LinkErrorOf("FNS$(1)=\"s\""), 0u);
}

TEST_F(UserFuncTest, LinkReportsAtTheStatement) {
  Lines({"10 DEF FNA(X)=X", "20 Z=FNQ(1)"});
  EXPECT_EQ(Link(prog_), 64u);
  EXPECT_EQ(loc::Number(g_err.location), 20u);
}

TEST_F(UserFuncTest, DuplicateDefinitionFailsAtTheSecond) {
  Lines({"10 DEF FNA(X)=X", "20 DEF FNA(Y)=Y", "30 DEF FNA$(Y)=\"\""});
  EXPECT_EQ(Link(prog_), 44u);
  EXPECT_EQ(loc::Number(g_err.location), 20u);
}

TEST_F(UserFuncTest, DeletedDefinitionIsForgotten) {
  Lines({"10 DEF FNA(X)=X", "20 Z=1"});
  ASSERT_EQ(Link(prog_), 0u);
  prog_.Delete(prog_.First());
  EXPECT_EQ(LinkErrorOf("FNA(1)"), 64u);
}

TEST_F(UserFuncTest, DefParseErrors) {
  EXPECT_EQ(DefError("DEF FNA(X,X)=1"), 45u);
  EXPECT_EQ(DefError("DEF FNA(X,)=1"), 46u);
  EXPECT_EQ(DefError("DEF FNA(1)=1"), 46u);
  EXPECT_EQ(DefError("DEF FNA(X=1"), 47u);
  EXPECT_EQ(DefError("DEF FNA(X) 1"), 27u);
  EXPECT_EQ(DefError("DEF FNA(X)="), 35u);
  EXPECT_EQ(DefError("DEF FNA$(X)=X"), 36u);
  EXPECT_EQ(DefError("DEF FNA=1"), 43u);
  EXPECT_EQ(DefError("DEF 1"), 42u);
  EXPECT_EQ(DefError("DEF FNA[X]=1"), 28u);
  EXPECT_EQ(DefError("DEF FNA(X)=X+"), 35u);
}

TEST_F(UserFuncTest, CallParseErrors) {
  ErrorCode linkError;
  EXPECT_FALSE(Expression<NumericExp>("FNA(1", ParseNumericExp, &linkError));
  EXPECT_EQ(g_err.parse, 29u);
  EXPECT_FALSE(Expression<NumericExp>("FNA(1,)", ParseNumericExp, &linkError));
  EXPECT_EQ(g_err.parse, 46u);
}

TEST_F(UserFuncTest, Listing) {
  EXPECT_EQ(DefListing("DEF fna( x , y ) = x*y"), "DEF fna(x,y)=x*y");
  EXPECT_EQ(DefListing("DEF FNA$(X,B$)=B$+DEC$(X)"), "DEF FNA$(X,B$)=B$+DEC$(X)");
  EXPECT_EQ(DefListing("DEF FNZ()=FNZ2(1,\"A\")"), "DEF FNZ()=FNZ2(1,\"A\")");
}

TEST_F(UserFuncTest, DefDoesNotExecute) {
  Lines({"10 DEF FNA(X)=X"});
  EXPECT_FALSE(prog_.First()->IsExecutable());
  EXPECT_EQ(prog_.First()->Code(), tok::kDef);
}

// String calls nested deep parse in time linear in their depth, and a deep nest
// that never closes is refused at once: each level once read its argument twice.
TEST(UserFuncParse, DeepStringCallsParseQuickly) {
  auto parse = [](const std::string& text) {
    Program prog;
    SetParseError(0);
    prog.StartLine(text.c_str());
    auto line = prog.ParseLine();
    return line.front()->ParseError();
  };
  std::string closed = "PRINT ", open = "PRINT ";
  for (int i = 0; i < 300; ++i) closed += "FNA$(";
  for (int i = 0; i < 150; ++i) open += "FNA$(X$,FNA$(";
  closed += "X$" + std::string(300, ')');
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(parse(closed), 0u);
  EXPECT_NE(parse(open), 0u);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
