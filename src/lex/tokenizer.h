// Scanner (characters to lexemes) and Tokenizer (lexemes to tokens with codes,
// kept in a list so that parsers back up without rescanning).
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "lex/symbols.h"
#include "lex/token.h"

class Scanner {
 public:
  static constexpr size_t kLineMax = 2047;  // longer lines are refused before scanning

  // Scans the NUL-terminated line; its end reads as a newline, for ever after.
  void SetLine(const char* line);
  // Cuts the next lexeme and returns its lexical class or punctuation code.
  TokenCode NextLexeme();
  std::string_view Lexeme() const { return lexeme_; }
  size_t Offset() const { return pos_; }  // characters of the line consumed so far
  size_t LineLength() const { return length_; }
  // The raw characters from offset to the end; the scanner is then at the end of the line.
  std::string_view SkipFrom(size_t offset);

 protected:
  // From offset on, words are cut as the classic switch reads them
  // (ScanClassicWord) or the ordinary way, until the next SetLine.
  void WordsFrom(size_t offset, bool classic) {
    pos_ = offset;
    classicWords_ = classic;
  }

 private:
  int Get();
  void Unget() {
    if (pos_ > 0) --pos_;
  }
  TokenCode ScanNumber(int c);
  TokenCode ScanWord();
  TokenCode ScanClassicWord();
  TokenCode FinishWord(int c);
  TokenCode ScanLiteral();
  TokenCode ScanCharCode();
  TokenCode ScanComment();

  const char* line_ = "";
  size_t length_ = 0;
  size_t pos_ = 0;      // next character; length_ + 1 once the end was read
  std::string lexeme_;  // literal values may hold NUL, so the length is explicit
  bool classicWords_ = false;
};

struct Token {
  TokenCode code;
  const KeyToken* symbol;  // keyword or variable for words, else null
  uint32_t textStart;      // lexeme in the tokenizer's text arena
  uint32_t textLength;
  TokenCode lexClass;  // what the scanner returned
  uint32_t rawEnd;     // line offset just after the token
};

class Tokenizer : public Scanner {
 public:
  Tokenizer();

  // Starts a new line: the token list and its texts are released.
  void StartLine(const char* line);
  // Under the classic switch, the rest of the line (after the current token) is
  // read as old listings were typed: keywords without blanks around them, names
  // of a letter and an optional digit. Called where a statement's text begins;
  // true when the switch is on.
  bool ReadClassicWords();
  // Reads the text from where ReadClassicWords began again with ordinary words:
  // the second reading of a line that failed the classic one.
  void ReadOrdinaryWords();

  TokenCode GetToken();
  void BackUp() {
    if (pos_ > 0) --pos_;
  }
  TokenCode Peek() {
    TokenCode code = GetToken();
    BackUp();
    return code;
  }
  size_t Mark() const { return pos_; }
  void Restore(size_t mark) { pos_ = mark; }

  TokenCode AcceptCategory(TokenCode category);
  bool Accept(TokenCode code);
  bool AcceptOpen();   // "(", "[" or "{"
  bool AcceptClose();  // ")", "]" or "}"
  // The opener of an argument list: "(", or under the classic switch "[" too;
  // 0 when neither follows.
  TokenCode AcceptOpener();
  // The closer of an argument list or substring opened with opener (ClosesList).
  bool AcceptCloser(TokenCode opener);
  // A signed numeric constant, hexadecimal or decimal, as a 32-bit value.
  bool AcceptConstant(float* value);

  const Token& Current() const { return tokens_[pos_ - 1]; }
  std::string_view Text() const { return TextOf(Current()); }
  std::string_view TextOf(const Token& token) const {
    return std::string_view(arena_).substr(token.textStart, token.textLength);
  }
  const KeyToken* Symbol() const { return Current().symbol; }
  // Characters of the line before the current token's end; for bad lines.
  const char* LineText() const { return lineStart_; }

  // The raw text after the current token (REM, IMAGE); the line then ends.
  std::string_view RestOfLine() {
    size_t from = pos_ ? tokens_[pos_ - 1].rawEnd : 0;
    tokens_.resize(pos_);
    return SkipFrom(from);
  }

  // The raw text after the current token, leading blanks dropped; nothing is consumed.
  std::string_view RawAfterCurrent() const {
    size_t from = pos_ ? tokens_[pos_ - 1].rawEnd : 0;
    std::string_view rest(lineStart_, LineLength());
    rest = rest.substr(std::min(from, rest.size()));
    while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
    return rest;
  }

  // Writes the tokens of the line as diagnostics text.
  std::string DumpTokens();

  SymbolTable& Table(TokenCode category);
  size_t SymbolStorage() const;

  // One more expression reading on this line; false once the line has had its share.
  // Nested calls whose string operands are read twice (as a relation, then as text)
  // would otherwise multiply the readings with every level.
  bool SpendExpression() { return expressions_ > 0 && expressions_-- > 0; }

 private:
  std::vector<Token> tokens_;
  std::string arena_;       // every lexeme of the line, back to back
  size_t pos_ = 0;          // tokens handed out; tokens_[pos_ - 1] is current
  size_t classicMark_ = 0;  // the tokens kept when the classic reading began
  const char* lineStart_ = "";
  static constexpr int kExpressionsPerLine = 50000;  // a full line needs a few thousand
  int expressions_ = kExpressionsPerLine;
  SymbolTable numVars_{tok::kNumVar};
  SymbolTable strVars_{tok::kStrVar};
  SymbolTable numArrays_{tok::kNumArray};
  SymbolTable strArrays_{tok::kStrArray};
  SymbolTable numFns_{tok::kNumUserFn};
  SymbolTable strFns_{tok::kStrUserFn};
};

// Whether code closes an argument list or substring opened with opener: its own
// bracket, or under the classic switch the other one too, as in ABS(Z].
bool ClosesList(TokenCode code, TokenCode opener);

// Writes a string literal as it is typed: printable runs in double quotes,
// other characters as 'code ("A"'10"B").
void ListStringLiteral(std::string& out, std::string_view text);

// Converts the text of a decimal constant with the overflow rule of constants.
float ConstantValue(std::string_view text, bool negative);
