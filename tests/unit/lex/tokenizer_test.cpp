// Tokenizer: keyword codes, word lookup, replay after backing up, accepts,
// constants and the token dump.
#include "lex/tokenizer.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace {

std::vector<TokenCode> Codes(Tokenizer& t, const char* line) {
  t.StartLine(line);
  std::vector<TokenCode> out;
  for (TokenCode c = t.GetToken(); c != tok::kEndOfLine; c = t.GetToken()) out.push_back(c);
  return out;
}

TEST(Keywords, EveryNameHasItsCode) {
  struct Row {
    const char* name;
    TokenCode code;
  };
  // clang-format off
  static const Row kRows[] = {
    {"LET", tok::kLet},             {"PRINT", tok::kPrint},       {"IF", tok::kIf},
    {"GOTO", tok::kGoto},           {"GOSUB", tok::kGosub},       {"RETURN", tok::kReturn},
    {"STOP", tok::kStop},           {"END", tok::kEnd},           {"REM", tok::kRem},
    {"FOR", tok::kFor},             {"NEXT", tok::kNext},         {"DIM", tok::kDim},
    {"DEF", tok::kDef},             {"INPUT", tok::kInput},       {"READ", tok::kRead},
    {"DATA", tok::kData},           {"ENTER", tok::kEnter},       {"RESTORE", tok::kRestore},
    {"MAT", tok::kMat},             {"LINPUT", tok::kLinput},     {"CONVERT", tok::kConvert},
    {"CHAIN", tok::kChain},         {"SPAWN", tok::kSpawn},       {"IMAGE", tok::kImage},
    {"COM", tok::kCom},             {"ELSE", tok::kElse},         {"ENDIF", tok::kEndIf},
    {"WHILE", tok::kWhile},         {"ENDWHILE", tok::kEndWhile}, {"REPEAT", tok::kRepeat},
    {"UNTIL", tok::kUntil},         {"SELECT", tok::kSelect},     {"CASE", tok::kCase},
    {"ENDSELECT", tok::kEndSelect}, {"SLEEP", tok::kSleep},       {"ON", tok::kOn},
    {"OFF", tok::kOff},             {"ASSIGN", tok::kAssign},     {"CLOSE", tok::kClose},
    {"FILES", tok::kFiles},         {"OPEN", tok::kOpen},         {"ADVANCE", tok::kAdvance},
    {"UPDATE", tok::kUpdate},       {"LOCK", tok::kLock},         {"UNLOCK", tok::kUnlock},
    {"CREATE", tok::kCreate},       {"PURGE", tok::kPurge},       {"EXTEND", tok::kExtend},
    {"SYSTEM", tok::kSystem},       {"WINDOW", tok::kWindow},     {"SHOW", tok::kShow},
    {"HIDE", tok::kHide},           {"MOVETO", tok::kMoveTo},     {"LINETO", tok::kLineTo},
    {"COLOR", tok::kColor},         {"USING", tok::kUsing},       {"ERROR", tok::kError},
    {"STEP", tok::kStep},           {"THEN", tok::kThen},         {"TO", tok::kTo},
    {"OF", tok::kOf},               {"RR", tok::kRr},             {"WR", tok::kWr},
    {"ZER", tok::kZer},             {"CON", tok::kCon},           {"IDN", tok::kIdn},
    {"TRN", tok::kTrn},             {"INV", tok::kInv},           {"DO", tok::kDo},
    {"NR", tok::kNr},               {"ABS", tok::kFnAbs},         {"ATN", tok::kFnAtn},
    {"BRK", tok::kFnBrk},           {"COS", tok::kFnCos},         {"EXP", tok::kFnExp},
    {"INT", tok::kFnInt},           {"ITM", tok::kFnItm},         {"LOG", tok::kFnLog},
    {"REC", tok::kFnRec},           {"RND", tok::kFnRnd},         {"SGN", tok::kFnSgn},
    {"SIN", tok::kFnSin},           {"SQR", tok::kFnSqr},         {"TAN", tok::kFnTan},
    {"TIM", tok::kFnTim},           {"TID", tok::kFnTid},         {"TYP", tok::kFnTyp},
    {"FIX", tok::kFnFix},           {"SYS", tok::kFnSys},         {"PI", tok::kFnPi},
    {"CHR$", tok::kFnChr},          {"UPS$", tok::kFnUps},        {"LEFT$", tok::kFnLeft},
    {"RIGHT$", tok::kFnRight},      {"MID$", tok::kFnMid},        {"DEC$", tok::kFnDecStr},
    {"LEN", tok::kFnLen},           {"NUM", tok::kFnNum},         {"ASC", tok::kFnNum},
    {"POS", tok::kFnPos},           {"DEC", tok::kFnDec},         {"LIN", tok::kFnLin},
    {"SPA", tok::kFnSpa},           {"TAB", tok::kFnTab},         {"CTL", tok::kFnCtl},
    {"VER", tok::kFnVer},           {"MIN", tok::kMin},           {"MAX", tok::kMax},
    {"AND", tok::kAnd},             {"OR", tok::kOr},             {"XOR", tok::kXor},
    {"NOT", tok::kNot},             {"IMP", tok::kImp},           {"MOD", tok::kMod},
    {"DIV", tok::kDiv},             {"EQV", tok::kEqv},           {"TRACE", tok::kTrace},
    {"TRON", tok::kTron},           {"TROFF", tok::kTroff},
  };
  // clang-format on
  ASSERT_EQ(std::size(kRows), 58u + 15 + 36 + 10);
  for (const Row& row : kRows) {
    const BasicToken* k = FindKeyword(row.name);
    ASSERT_NE(k, nullptr) << row.name;
    EXPECT_EQ(k->Code(), row.code) << row.name;
    EXPECT_STREQ(k->Name(), row.name);
    std::string lower(row.name);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_EQ(FindKeyword(lower), k) << lower;
  }
  EXPECT_EQ(FindKeyword("PRIN"), nullptr);
  EXPECT_EQ(FindKeyword("ENDIFX"), nullptr);
}

TEST(Tokenizer, KeywordsAreReservedInEveryWordKind) {
  Tokenizer t;
  // LEN( is the function, TO never a variable, CHR$ the function even without "(".
  EXPECT_EQ(Codes(t, "len(X) to TO CHR$ chr$(1) Print min"),
            (std::vector<TokenCode>{tok::kFnLen, tok::kLParen, tok::kNumVar, tok::kRParen, tok::kTo,
                                    tok::kTo, tok::kFnChr, tok::kFnChr, tok::kLParen, tok::kInteger,
                                    tok::kRParen, tok::kPrint, tok::kMin}));
  EXPECT_EQ(t.Table(tok::kNumVar).Count(), 1u);
  EXPECT_EQ(t.Table(tok::kNumArray).Count(), 0u);
}

TEST(Tokenizer, WordsFindTheirTable) {
  Tokenizer t;
  EXPECT_EQ(
      Codes(t, "A A$ A(1) A$(1) fna(1) FNA(2) FNA fn(1) fn$(1) fnb$(1) A$[1]"),
      (std::vector<TokenCode>{
          tok::kNumVar,    tok::kStrVar,   tok::kNumArray,  tok::kLParen,       tok::kInteger,
          tok::kRParen,    tok::kStrArray, tok::kLParen,    tok::kInteger,      tok::kRParen,
          tok::kNumUserFn, tok::kLParen,   tok::kInteger,   tok::kRParen,       tok::kNumUserFn,
          tok::kLParen,    tok::kInteger,  tok::kRParen,    tok::kNumVar + 1,   tok::kNumArray + 1,
          tok::kLParen,    tok::kInteger,  tok::kRParen,    tok::kStrArray + 1, tok::kLParen,
          tok::kInteger,   tok::kRParen,   tok::kStrUserFn, tok::kLParen,       tok::kInteger,
          tok::kRParen,    tok::kStrVar,   tok::kLBracket,  tok::kInteger,      tok::kRBracket}));
  // First use decides the spelling, on later lines too.
  Codes(t, "FnA(3) a");
  EXPECT_STREQ(t.Table(tok::kNumUserFn).Find("FNA")->Name(), "fna");
  EXPECT_STREQ(t.Table(tok::kNumVar).Find("a")->Name(), "A");
  // Other lexical classes keep their class as the code.
  EXPECT_EQ(Codes(t, "1.2.3 \"x '1E \t"),
            (std::vector<TokenCode>{tok::kBadConstant, tok::kInteger, tok::kOpenLiteral}));
  EXPECT_EQ(Codes(t, "'300 1E \t"),
            (std::vector<TokenCode>{tok::kBadCharCode, tok::kBadConstant, tok::kOther}));
}

TEST(Tokenizer, BackingUpReplaysWithoutRescanning) {
  Tokenizer t;
  const char* line = "A+B*2";
  t.StartLine(line);
  EXPECT_EQ(t.GetToken(), tok::kNumVar);
  size_t mark = t.Mark();
  EXPECT_EQ(t.GetToken(), tok::kPlus);
  EXPECT_EQ(t.GetToken(), tok::kNumVar + 1);
  size_t scanned = t.Offset();
  t.Restore(mark);
  EXPECT_EQ(t.GetToken(), tok::kPlus);
  t.BackUp();
  t.BackUp();
  t.BackUp();  // past the first token: the empty position
  EXPECT_EQ(t.Mark(), 0u);
  EXPECT_EQ(t.GetToken(), tok::kNumVar);
  EXPECT_EQ(t.Text(), "A");
  EXPECT_EQ(t.GetToken(), tok::kPlus);
  EXPECT_EQ(t.GetToken(), tok::kNumVar + 1);
  EXPECT_EQ(t.Offset(), scanned);  // replayed from the list
  EXPECT_EQ(t.Peek(), tok::kStar);
  EXPECT_EQ(t.Peek(), tok::kStar);
  EXPECT_EQ(t.GetToken(), tok::kStar);
  EXPECT_EQ(t.GetToken(), tok::kInteger);
  EXPECT_EQ(t.Text(), "2");
  EXPECT_EQ(t.GetToken(), tok::kEndOfLine);
  EXPECT_EQ(t.GetToken(), tok::kEndOfLine);
}

TEST(Tokenizer, AcceptOperations) {
  Tokenizer t;
  t.StartLine("THEN X ; [ } ( ]");
  EXPECT_EQ(t.AcceptCategory(tok::kStatement), 0u);
  EXPECT_FALSE(t.Accept(tok::kTo));
  EXPECT_EQ(t.AcceptCategory(tok::kSecondary), tok::kThen);
  EXPECT_FALSE(t.AcceptOpen());
  EXPECT_EQ(t.AcceptCategory(tok::kNumVar), tok::kNumVar);
  EXPECT_TRUE(t.Accept(tok::kSemicolon));
  EXPECT_FALSE(t.AcceptClose());
  EXPECT_TRUE(t.AcceptOpen());
  EXPECT_FALSE(t.AcceptOpen());
  EXPECT_TRUE(t.AcceptClose());
  EXPECT_TRUE(t.AcceptOpen());
  EXPECT_TRUE(t.AcceptClose());
  EXPECT_TRUE(t.Accept(tok::kEndOfLine));
  // A lexical class is no symbol of category 0.
  t.StartLine("5");
  EXPECT_EQ(t.AcceptCategory(0), 0u);
  EXPECT_TRUE(t.Accept(tok::kInteger));
}

TEST(Tokenizer, Constants) {
  Tokenizer t;
  auto value = [&](const char* line, float* v) {
    t.StartLine(line);
    return t.AcceptConstant(v);
  };
  float v = 0;
  EXPECT_TRUE(value("-2.5", &v));
  EXPECT_EQ(v, -2.5f);
  EXPECT_TRUE(value("0x10", &v));
  EXPECT_EQ(v, 16.0f);
  EXPECT_TRUE(value("0x1FFFFFFFF", &v));  // wraps as a 32-bit integer
  EXPECT_EQ(v, 4294967295.0f);
  EXPECT_TRUE(value("1E39", &v));
  EXPECT_EQ(v, 3.4028235e+38f);
  EXPECT_TRUE(value("-1E39", &v));  // the smallest normal number, not the most negative
  EXPECT_EQ(v, 1.1754944e-38f);
  EXPECT_TRUE(value("0.1", &v));
  EXPECT_EQ(v, 0.1f);
  EXPECT_TRUE(value("16777217", &v));
  EXPECT_EQ(v, 16777216.0f);
  for (const char* bad : {"-0x10", "-X", "X", "1.2.3", "- \"1\""}) {
    EXPECT_FALSE(value(bad, &v)) << bad;
    EXPECT_EQ(t.Mark(), 0u) << bad;
  }
}

TEST(Tokenizer, DumpFormat) {
  Tokenizer t;
  Codes(t, "10 PRINT \"A\"'7\"B\";X THEN Y AND \"\"");
  EXPECT_EQ(t.DumpTokens(), "10 PRINT \"A\"'7\"B\";X THEN Y AND \"\"");
  Codes(t, "'34'34 : FOR I=1 TO 2");
  EXPECT_EQ(t.DumpTokens(), "'34'34: FOR I=1 TO 2");
}

TEST(Tokenizer, RestOfLineKeepsTheRawText) {
  Tokenizer t;
  t.StartLine("REM  a \"b  ! c");
  EXPECT_EQ(t.GetToken(), tok::kRem);
  EXPECT_EQ(t.RestOfLine(), "a \"b  ! c");  // the word's trailing blanks went with it
  EXPECT_EQ(t.GetToken(), tok::kEndOfLine);
}

}  // namespace

namespace {

// The edges of what is printable: blank and "~" are, DEL and '"' are not.
TEST(Tokenizer, LiteralsListAsTyped) {
  std::string out;
  ListStringLiteral(out, std::string_view("~\x7f \x1f\"", 5));
  EXPECT_EQ(out, "\"~\"'127\" \"'31'34");
  out.clear();
  ListStringLiteral(out, "");
  EXPECT_EQ(out, "\"\"");
}

}  // namespace
