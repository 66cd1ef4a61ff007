// The scanner's state machine: lexical classes and the lexemes they carry.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "lex/tokenizer.h"

namespace {

using Lexemes = std::vector<std::pair<TokenCode, std::string>>;

// Every lexeme of a line up to and including the end of line.
Lexemes Scan(const char* line) {
  Scanner s;
  s.SetLine(line);
  Lexemes out;
  for (int i = 0; i < 100; ++i) {
    TokenCode code = s.NextLexeme();
    out.emplace_back(code, std::string(s.Lexeme()));
    if (code == tok::kEndOfLine) break;
  }
  return out;
}

Lexemes L(std::initializer_list<std::pair<TokenCode, std::string>> items) {
  Lexemes out(items);
  out.emplace_back(tok::kEndOfLine, "");
  return out;
}

TEST(Scanner, NumericConstants) {
  EXPECT_EQ(Scan("10.3E34 .5 5. 0012"), L({{tok::kExponent, "10.3E34"},
                                           {tok::kDecimal, ".5"},
                                           {tok::kDecimal, "5."},
                                           {tok::kInteger, "0012"}}));
  EXPECT_EQ(Scan("1e-5 2E+7 0x1F 0XaB 0"), L({{tok::kExponent, "1e-5"},
                                              {tok::kExponent, "2E+7"},
                                              {tok::kHex, "0x1F"},
                                              {tok::kHex, "0XaB"},
                                              {tok::kInteger, "0"}}));
  // The second point ends a bad constant and is consumed; scanning goes on after it.
  EXPECT_EQ(Scan("1.2.3"), L({{tok::kBadConstant, "1.2"}, {tok::kInteger, "3"}}));
  // An exponent or hex prefix without digits is bad; the offending character is left.
  EXPECT_EQ(Scan("1EA"), L({{tok::kBadConstant, "1E"}, {tok::kWord, "A"}}));
  EXPECT_EQ(Scan("1E+X"), L({{tok::kBadConstant, "1E+"}, {tok::kWord, "X"}}));
  EXPECT_EQ(Scan("0xG"), L({{tok::kBadConstant, "0x"}, {tok::kWord, "G"}}));
  // No sign is part of a constant at this level.
  EXPECT_EQ(Scan("-1"), L({{tok::kMinus, "-"}, {tok::kInteger, "1"}}));
}

TEST(Scanner, WordClasses) {
  EXPECT_EQ(Scan("A (1)"), L({{tok::kWordBracket, "A"},
                              {tok::kLParen, "("},
                              {tok::kInteger, "1"},
                              {tok::kRParen, ")"}}));
  EXPECT_EQ(Scan("B[2] C$ (1) D$[1]"), L({{tok::kWordBracket, "B"},
                                          {tok::kLBracket, "["},
                                          {tok::kInteger, "2"},
                                          {tok::kRBracket, "]"},
                                          {tok::kStringWordParen, "C$"},
                                          {tok::kLParen, "("},
                                          {tok::kInteger, "1"},
                                          {tok::kRParen, ")"},
                                          {tok::kStringWord, "D$"},
                                          {tok::kLBracket, "["},
                                          {tok::kInteger, "1"},
                                          {tok::kRBracket, "]"}}));
  // "_" and "$" may start a word; blanks after a word are not part of it.
  EXPECT_EQ(Scan("_x1 $ab a_b2  +"),
            L({{tok::kWord, "_x1"}, {tok::kWord, "$ab"}, {tok::kWord, "a_b2"}, {tok::kPlus, "+"}}));
}

TEST(Scanner, StringLiterals) {
  EXPECT_EQ(Scan("\"AB\" \"C\""), L({{tok::kString, "ABC"}}));
  EXPECT_EQ(Scan("'65'66"), L({{tok::kString, "AB"}}));
  EXPECT_EQ(Scan("'34\"Hello\"'34"), L({{tok::kString, "\"Hello\""}}));
  EXPECT_EQ(Scan("'7 X"), L({{tok::kString, "\a"}, {tok::kWord, "X"}}));
  EXPECT_EQ(Scan("'0"), L({{tok::kString, std::string(1, '\0')}}));
  // Blanks are skipped after a closing quote only, not after a code.
  EXPECT_EQ(Scan("'65 \"B\""), L({{tok::kString, "A"}, {tok::kString, "B"}}));
  EXPECT_EQ(Scan("\"\""), L({{tok::kString, ""}}));
  EXPECT_EQ(Scan("'256"), L({{tok::kBadCharCode, ""}}));
  // The character after a bad "'" is swallowed.
  EXPECT_EQ(Scan("\"A\"'X"), L({{tok::kBadCharCode, "A"}}));
  EXPECT_EQ(Scan("\"open"), L({{tok::kOpenLiteral, "open"}}));
}

TEST(Scanner, CommentsAndOperators) {
  EXPECT_EQ(
      Scan("X = 1 ! note"),
      L({{tok::kWord, "X"}, {tok::kEQ, "="}, {tok::kInteger, "1"}, {tok::kComment, "! note"}}));
  EXPECT_EQ(Scan("A // B"), L({{tok::kWord, "A"}, {tok::kComment, "// B"}}));
  EXPECT_EQ(Scan("A / B"), L({{tok::kWord, "A"}, {tok::kSlash, "/"}, {tok::kWord, "B"}}));
  Lexemes ops = Scan("<= =< >= => <> # < > = * ** ^ + - ( ) [ ] { } , ; : ? @");
  std::vector<TokenCode> codes;
  for (const auto& [code, text] : ops) codes.push_back(code);
  EXPECT_EQ(codes,
            (std::vector<TokenCode>{tok::kLE,       tok::kLE,        tok::kGE,     tok::kGE,
                                    tok::kNE,       tok::kHash,      tok::kLT,     tok::kGT,
                                    tok::kEQ,       tok::kStar,      tok::kPower,  tok::kCaret,
                                    tok::kPlus,     tok::kMinus,     tok::kLParen, tok::kRParen,
                                    tok::kLBracket, tok::kRBracket,  tok::kLBrace, tok::kRBrace,
                                    tok::kComma,    tok::kSemicolon, tok::kColon,  tok::kQuestion,
                                    tok::kAt,       tok::kEndOfLine}));
}

TEST(Scanner, OtherCharactersAndLineEnd) {
  EXPECT_EQ(Scan("A\tB"), L({{tok::kWord, "A"}, {tok::kOther, "\t"}, {tok::kWord, "B"}}));
  EXPECT_EQ(Scan("\xC4%"), L({{tok::kOther, "\xC4"}, {tok::kOther, "%"}}));
  // Once the line is used up, its end reads as a newline for ever.
  Scanner s;
  s.SetLine("7");
  EXPECT_EQ(s.NextLexeme(), tok::kInteger);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(s.NextLexeme(), tok::kEndOfLine);
}

}  // namespace
