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
  static const Row kRows[] = {
      {"LET", 0xF00A},      {"PRINT", 0xF019},     {"IF", 0xF00B},     {"GOTO", 0xF00C},
      {"GOSUB", 0xF00D},    {"RETURN", 0xF00E},    {"STOP", 0xF011},   {"END", 0xF012},
      {"REM", 0xF01B},      {"FOR", 0xF00F},       {"NEXT", 0xF010},   {"DIM", 0xF01C},
      {"DEF", 0xF021},      {"INPUT", 0xF016},     {"READ", 0xF014},   {"DATA", 0xF013},
      {"ENTER", 0xF017},    {"RESTORE", 0xF015},   {"MAT", 0xF023},    {"LINPUT", 0xF018},
      {"CONVERT", 0xF022},  {"CHAIN", 0xF01E},     {"SPAWN", 0xF01F},  {"IMAGE", 0xF01A},
      {"COM", 0xF01D},      {"ELSE", 0xF033},      {"ENDIF", 0xF034},  {"WHILE", 0xF035},
      {"ENDWHILE", 0xF036}, {"REPEAT", 0xF037},    {"UNTIL", 0xF038},  {"SELECT", 0xF039},
      {"CASE", 0xF03A},     {"ENDSELECT", 0xF03B}, {"SLEEP", 0xF03C},  {"ON", 0xF025},
      {"OFF", 0xF026},      {"ASSIGN", 0xF028},    {"CLOSE", 0xF031},  {"FILES", 0xF027},
      {"OPEN", 0xF030},     {"ADVANCE", 0xF02B},   {"UPDATE", 0xF02C}, {"LOCK", 0xF02D},
      {"UNLOCK", 0xF02E},   {"CREATE", 0xF029},    {"PURGE", 0xF02A},  {"EXTEND", 0xF02F},
      {"SYSTEM", 0xF024},   {"WINDOW", 0xF03D},    {"SHOW", 0xF03E},   {"HIDE", 0xF03F},
      {"MOVETO", 0xF040},   {"LINETO", 0xF041},    {"COLOR", 0xF042},  {"USING", 0xE014},
      {"ERROR", 0xE015},    {"STEP", 0xE016},      {"THEN", 0xE017},   {"TO", 0xE019},
      {"OF", 0xE01A},       {"RR", 0xE01B},        {"WR", 0xE01D},     {"ZER", 0xE01E},
      {"CON", 0xE01F},      {"IDN", 0xE020},       {"TRN", 0xE021},    {"INV", 0xE022},
      {"DO", 0xE018},       {"NR", 0xE01C},        {"ABS", 0x900A},    {"ATN", 0x900B},
      {"BRK", 0x901A},      {"COS", 0x900C},       {"EXP", 0x900D},    {"INT", 0x900E},
      {"ITM", 0x9019},      {"LOG", 0x9010},       {"REC", 0x9018},    {"RND", 0x9011},
      {"SGN", 0x9012},      {"SIN", 0x9013},       {"SQR", 0x9014},    {"TAN", 0x9015},
      {"TIM", 0x901B},      {"TID", 0x9016},       {"TYP", 0x901C},    {"FIX", 0x900F},
      {"SYS", 0x901D},      {"PI", 0x9022},        {"CHR$", 0x800B},   {"UPS$", 0x800A},
      {"LEFT$", 0x800D},    {"RIGHT$", 0x800E},    {"MID$", 0x800F},   {"DEC$", 0x800C},
      {"LEN", 0x901F},      {"NUM", 0x9020},       {"ASC", 0x9020},    {"POS", 0x9021},
      {"DEC", 0x901E},      {"LIN", 0x500A},       {"SPA", 0x500B},    {"TAB", 0x500C},
      {"CTL", 0x500D},      {"VER", 0x9017},       {"MIN", 0xD012},    {"MAX", 0xD013},
      {"AND", 0xC00A},      {"OR", 0xC00B},        {"XOR", 0xC00D},    {"NOT", 0xC00C},
      {"IMP", 0xC00F},      {"MOD", 0xD010},       {"DIV", 0xD011},    {"EQV", 0xC00E},
  };
  ASSERT_EQ(std::size(kRows), 55u + 15 + 36 + 10);
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
            (std::vector<TokenCode>{0x901F, 0xA00A, 0x1000, 0xA00B, 0xE019, 0xE019, 0x800B, 0x800B,
                                    0xA00A, 12, 0xA00B, 0xF019, 0xD012}));
  EXPECT_EQ(t.Table(tok::kNumVar).Count(), 1u);
  EXPECT_EQ(t.Table(tok::kNumArray).Count(), 0u);
}

TEST(Tokenizer, WordsFindTheirTable) {
  Tokenizer t;
  EXPECT_EQ(Codes(t, "A A$ A(1) A$(1) fna(1) FNA(2) FNA fn(1) fn$(1) fnb$(1) A$[1]"),
            (std::vector<TokenCode>{0x1000, 0x2000, 0x3000, 0xA00A, 12,     0xA00B, 0x4000,
                                    0xA00A, 12,     0xA00B, 0x7000, 0xA00A, 12,     0xA00B,
                                    0x7000, 0xA00A, 12,     0xA00B, 0x1001, 0x3001, 0xA00A,
                                    12,     0xA00B, 0x4001, 0xA00A, 12,     0xA00B, 0x6000,
                                    0xA00A, 12,     0xA00B, 0x2000, 0xA00C, 12,     0xA00D}));
  // First use decides the spelling, on later lines too.
  Codes(t, "FnA(3) a");
  EXPECT_STREQ(t.Table(tok::kNumUserFn).Find("FNA")->Name(), "fna");
  EXPECT_STREQ(t.Table(tok::kNumVar).Find("a")->Name(), "A");
  // Other lexical classes keep their class as the code.
  EXPECT_EQ(Codes(t, "1.2.3 \"x '1E \t"), (std::vector<TokenCode>{5, 12, 7}));
  EXPECT_EQ(Codes(t, "'300 1E \t"), (std::vector<TokenCode>{8, 5, 20}));
}

TEST(Tokenizer, BackingUpReplaysWithoutRescanning) {
  Tokenizer t;
  const char* line = "A+B*2";
  t.StartLine(line);
  EXPECT_EQ(t.GetToken(), 0x1000u);
  size_t mark = t.Mark();
  EXPECT_EQ(t.GetToken(), tok::kPlus);
  EXPECT_EQ(t.GetToken(), 0x1001u);
  size_t scanned = t.Offset();
  t.Restore(mark);
  EXPECT_EQ(t.GetToken(), tok::kPlus);
  t.BackUp();
  t.BackUp();
  t.BackUp();  // past the first token: the empty position
  EXPECT_EQ(t.Mark(), 0u);
  EXPECT_EQ(t.GetToken(), 0x1000u);
  EXPECT_EQ(t.Text(), "A");
  EXPECT_EQ(t.GetToken(), tok::kPlus);
  EXPECT_EQ(t.GetToken(), 0x1001u);
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
  EXPECT_EQ(t.AcceptCategory(tok::kNumVar), 0x1000u);
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
