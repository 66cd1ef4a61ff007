#include "lex/tokenizer.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/dialect.h"
#include "lex/keywords.h"
#include "lex/parse_attempt.h"

namespace {

bool IsDigit(int c) { return c >= '0' && c <= '9'; }
bool IsLetter(int c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsHexDigit(int c) { return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

TokenCode SinglePunct(int c) {
  switch (c) {
    case '(':
      return tok::kLParen;
    case ')':
      return tok::kRParen;
    case '[':
      return tok::kLBracket;
    case ']':
      return tok::kRBracket;
    case '{':
      return tok::kLBrace;
    case '}':
      return tok::kRBrace;
    case ',':
      return tok::kComma;
    case ';':
      return tok::kSemicolon;
    case ':':
      return tok::kColon;
    case '?':
      return tok::kQuestion;
    case '@':
      return tok::kAt;
    case '#':
      return tok::kHash;
    case '+':
      return tok::kPlus;
    case '-':
      return tok::kMinus;
    case '^':
      return tok::kCaret;
    default:
      return 0;
  }
}

bool StartsWithFn(std::string_view word) {
  return word.size() >= 2 && (word[0] | 0x20) == 'f' && (word[1] | 0x20) == 'n';
}

bool IsLetterAt(std::string_view text, size_t i) { return i < text.size() && IsLetter(text[i]); }
bool IsDigitAt(std::string_view text, size_t i) { return i < text.size() && IsDigit(text[i]); }

// Whether text continues at i with word (any case).
bool WordAt(std::string_view text, size_t i, std::string_view word) {
  return i <= text.size() && SameName(text.substr(i, word.size()), word);
}

// GO TO and GO SUB with blanks between the two words, as one keyword's letters
// ("GOTO"), or 0 when text does not begin with them.
size_t GoWords(std::string_view text, std::string* letters) {
  if (!WordAt(text, 0, "GO")) return 0;
  size_t i = 2;
  while (i < text.size() && text[i] == ' ') ++i;
  size_t word = WordAt(text, i, "TO") ? 2 : WordAt(text, i, "SUB") ? 3 : 0;
  if (i == 2 || word == 0) return 0;
  letters->assign(text.substr(0, 2));
  letters->append(text.substr(i, word));
  return i + word;
}

}  // namespace

void Scanner::SetLine(const char* line) {
  line_ = line;
  length_ = std::strlen(line);
  pos_ = 0;
  classicWords_ = false;
}

std::string_view Scanner::SkipFrom(size_t offset) {
  pos_ = length_;
  if (offset >= length_) return {};
  return std::string_view(line_ + offset, length_ - offset);
}

int Scanner::Get() {
  if (pos_ < length_) return static_cast<unsigned char>(line_[pos_++]);
  pos_ = length_ + 1;
  return '\n';
}

TokenCode Scanner::NextLexeme() {
  lexeme_.clear();
  int c = Get();
  while (c == ' ') c = Get();
  switch (c) {
    case '\n':
      return tok::kEndOfLine;
    case '!':
      lexeme_ += '!';
      return ScanComment();
    case '/':
      c = Get();
      if (c == '/') {
        lexeme_ = "//";
        return ScanComment();
      }
      Unget();
      lexeme_ = "/";
      return tok::kSlash;
    case '"':
      return ScanLiteral();
    case '\'':
      return ScanCharCode();
    default:
      break;
  }
  lexeme_ += static_cast<char>(c);
  if (IsDigit(c) || c == '.') return ScanNumber(c);
  if (IsLetter(c) || c == '_' || c == '$')
    return classicWords_ && IsLetter(c) ? ScanClassicWord() : ScanWord();
  switch (c) {
    case '*':
      if (Get() == '*') {
        lexeme_ += '*';
        return tok::kPower;
      }
      Unget();
      return tok::kStar;
    case '<':
      c = Get();
      if (c == '=') return tok::kLE;
      if (c == '>') return tok::kNE;
      Unget();
      return tok::kLT;
    case '>':
      if (Get() == '=') return tok::kGE;
      Unget();
      return tok::kGT;
    case '=':
      c = Get();
      if (c == '<') return tok::kLE;
      if (c == '>') return tok::kGE;
      Unget();
      return tok::kEQ;
    default:
      break;
  }
  TokenCode punct = SinglePunct(c);
  return punct ? punct : tok::kOther;
}

TokenCode Scanner::ScanNumber(int c) {
  enum { kInteger, kFraction, kExpStart, kExpSign, kExpDigits, kHexStart, kHexDigits } state;
  TokenCode beforeExponent = tok::kInteger;
  if (c == '.') {
    state = kFraction;
  } else if (c == '0') {
    c = Get();
    if (c == 'x' || c == 'X') {
      lexeme_ += static_cast<char>(c);
      state = kHexStart;
    } else {
      Unget();  // leading zeros are allowed
      state = kInteger;
    }
  } else {
    state = kInteger;
  }
  for (;;) {
    c = Get();
    switch (state) {
      case kInteger:
        if (IsDigit(c)) break;
        if (c == '.') {
          state = kFraction;
          break;
        }
        if (c == 'E' || c == 'e') {
          state = kExpStart;
          beforeExponent = tok::kInteger;
          break;
        }
        Unget();
        return tok::kInteger;
      case kFraction:
        if (IsDigit(c)) break;
        if (c == 'E' || c == 'e') {
          state = kExpStart;
          beforeExponent = tok::kDecimal;
          break;
        }
        if (c == '.') return tok::kBadConstant;  // the second point is consumed
        Unget();
        return tok::kDecimal;
      case kExpStart:
        if (c == '+' || c == '-') {
          state = kExpSign;
          break;
        }
        if (IsDigit(c)) {
          state = kExpDigits;
          break;
        }
        Unget();
        if (g_classic) {
          // An E that starts no exponent begins the next word: 100END, 1ELSE.
          Unget();
          lexeme_.pop_back();
          return beforeExponent;
        }
        return tok::kBadConstant;
      case kExpSign:
        if (IsDigit(c)) {
          state = kExpDigits;
          break;
        }
        Unget();
        return tok::kBadConstant;
      case kExpDigits:
        if (IsDigit(c)) break;
        Unget();
        return tok::kExponent;
      case kHexStart:
        if (IsHexDigit(c)) {
          state = kHexDigits;
          break;
        }
        Unget();
        return tok::kBadConstant;
      case kHexDigits:
        if (IsHexDigit(c)) break;
        Unget();
        return tok::kHex;
    }
    lexeme_ += static_cast<char>(c);
  }
}

TokenCode Scanner::ScanWord() {
  int c;
  for (;;) {
    c = Get();
    if (IsLetter(c) || IsDigit(c) || c == '_') {
      lexeme_ += static_cast<char>(c);
      continue;
    }
    break;
  }
  return FinishWord(c);
}

// After a word's letters, at c: "$" makes it a string word; blanks are
// skipped to see whether a bracket follows.
TokenCode Scanner::FinishWord(int c) {
  if (c == '$') {
    lexeme_ += '$';
    do c = Get();
    while (c == ' ');
    Unget();
    return c == '(' ? tok::kStringWordParen : tok::kStringWord;
  }
  while (c == ' ') c = Get();
  Unget();
  return c == '(' || c == '[' ? tok::kWordBracket : tok::kWord;
}

// The classic switch's words, at a letter: the longest keyword that begins
// here (GO TO and GO SUB in two words too), else FN and a letter (a user
// function), else a name of one letter and an optional digit.
TokenCode Scanner::ScanClassicWord() {
  size_t start = pos_ - 1;
  std::string_view rest(line_ + start, length_ - start);
  size_t length = KeywordLengthAt(rest);
  if (length > 0)
    lexeme_.assign(rest.substr(0, length));
  else
    length = GoWords(rest, &lexeme_);
  if (length > 0) {
    pos_ = start + length;
    if (lexeme_.back() == '$') {
      lexeme_.pop_back();
      return FinishWord('$');
    }
    int c = Get();
    if (c != '$') return FinishWord(c);
    Unget();  // a "$" after a keyword is no part of it
    return tok::kWord;
  }
  length = WordAt(rest, 0, "FN") && IsLetterAt(rest, 2) ? 3 : 1;
  if (IsDigitAt(rest, length)) ++length;
  lexeme_.assign(rest.substr(0, length));
  pos_ = start + length;
  return FinishWord(Get());
}

TokenCode Scanner::ScanLiteral() {
  for (;;) {
    int c = Get();
    if (c == '\n') {
      Unget();
      return tok::kOpenLiteral;
    }
    if (c != '"') {
      lexeme_ += static_cast<char>(c);
      continue;
    }
    // After a closing quote: blanks, another quoted part, or a character code.
    do c = Get();
    while (c == ' ');
    if (c == '"') continue;
    if (c == '\'') return ScanCharCode();
    Unget();
    return tok::kString;
  }
}

TokenCode Scanner::ScanCharCode() {
  for (;;) {
    int c = Get();
    if (!IsDigit(c)) return tok::kBadCharCode;  // not pushed back
    int value = c - '0';
    for (c = Get(); IsDigit(c); c = Get()) {
      value = value * 10 + (c - '0');
      if (value > 255) return tok::kBadCharCode;
    }
    lexeme_ += static_cast<char>(value);
    if (c == '"') return ScanLiteral();
    if (c != '\'') {
      Unget();
      return tok::kString;
    }
  }
}

TokenCode Scanner::ScanComment() {
  for (;;) {
    int c = Get();
    if (c == '\n') {
      Unget();
      return tok::kComment;
    }
    lexeme_ += static_cast<char>(c);
  }
}

Tokenizer::Tokenizer() { tokens_.reserve(64); }

void Tokenizer::StartLine(const char* line) {
  tokens_.clear();
  arena_.clear();
  pos_ = 0;
  lineStart_ = line;
  expressions_ = kExpressionsPerLine;
  SetLine(line);
}

bool Tokenizer::ReadClassicWords() {
  if (!g_classic) return false;
  // Tokens cut ahead of the current one are cut again the classic way.
  classicMark_ = pos_;
  tokens_.resize(pos_);
  WordsFrom(pos_ ? tokens_[pos_ - 1].rawEnd : 0, true);
  return true;
}

void Tokenizer::ReadOrdinaryWords() {
  pos_ = classicMark_;
  tokens_.resize(pos_);
  WordsFrom(pos_ ? tokens_[pos_ - 1].rawEnd : 0, false);
}

SymbolTable& Tokenizer::Table(TokenCode category) {
  switch (category) {
    case tok::kStrVar:
      return strVars_;
    case tok::kNumArray:
      return numArrays_;
    case tok::kStrArray:
      return strArrays_;
    case tok::kNumUserFn:
      return numFns_;
    case tok::kStrUserFn:
      return strFns_;
    default:
      return numVars_;
  }
}

size_t Tokenizer::SymbolStorage() const {
  return numVars_.StorageSize() + strVars_.StorageSize() + numArrays_.StorageSize() +
         strArrays_.StorageSize() + numFns_.StorageSize() + strFns_.StorageSize();
}

TokenCode Tokenizer::GetToken() {
  if (pos_ < tokens_.size()) return tokens_[pos_++].code;
  TokenCode lexClass = NextLexeme();
  std::string_view text = Lexeme();
  Token token{lexClass,
              nullptr,
              static_cast<uint32_t>(arena_.size()),
              static_cast<uint32_t>(text.size()),
              lexClass,
              static_cast<uint32_t>(std::min(Offset(), LineLength()))};
  arena_.append(text);
  if (lexClass >= tok::kWord && lexClass <= tok::kStringWordParen) {
    if (const BasicToken* keyword = FindKeyword(text)) {
      token.symbol = keyword;
    } else {
      TokenCode category = tok::kNumVar;
      if (lexClass == tok::kStringWord) {
        category = tok::kStrVar;
      } else if (lexClass == tok::kWordBracket) {
        category = StartsWithFn(text) && text.size() > 2 ? tok::kNumUserFn : tok::kNumArray;
      } else if (lexClass == tok::kStringWordParen) {
        category = StartsWithFn(text) && text.size() > 3 ? tok::kStrUserFn : tok::kStrArray;
      }
      token.symbol = Table(category).FindOrCreate(text);
    }
    if (token.symbol) token.code = token.symbol->Code();
  }
  tokens_.push_back(token);
  return tokens_[pos_++].code;
}

TokenCode Tokenizer::AcceptCategory(TokenCode category) {
  TokenCode code = GetToken();
  if (tok::Category(code) == category && code >= tok::kFirstCoded) return code;
  BackUp();
  return 0;
}

bool Tokenizer::Accept(TokenCode code) {
  if (GetToken() == code) return true;
  BackUp();
  return false;
}

bool Tokenizer::AcceptOpen() {
  TokenCode code = GetToken();
  if (code == tok::kLParen || code == tok::kLBracket || code == tok::kLBrace) return true;
  BackUp();
  return false;
}

bool Tokenizer::AcceptClose() {
  TokenCode code = GetToken();
  if (code == tok::kRParen || code == tok::kRBracket || code == tok::kRBrace) return true;
  BackUp();
  return false;
}

bool ClosesList(TokenCode code, TokenCode opener) {
  if (code == (opener == tok::kLBracket ? tok::kRBracket : tok::kRParen)) return true;
  return g_classic && (code == tok::kRParen || code == tok::kRBracket);
}

TokenCode Tokenizer::AcceptOpener() {
  TokenCode code = GetToken();
  if (code == tok::kLParen || (g_classic && code == tok::kLBracket)) return code;
  BackUp();
  return 0;
}

bool Tokenizer::AcceptCloser(TokenCode opener) {
  if (ClosesList(GetToken(), opener)) return true;
  BackUp();
  return false;
}

float ConstantValue(std::string_view text, bool negative) {
  std::string copy(text);
  float value = static_cast<float>(std::strtod(copy.c_str(), nullptr));
  if (negative) value = -value;
  if (std::isinf(value)) return value > 0 ? 3.4028235e+38f : 1.1754944e-38f;
  return value;
}

bool Tokenizer::AcceptConstant(float* value) {
  ParseAttempt constant(*this);
  TokenCode code = GetToken();
  if (code == tok::kHex) {
    uint32_t bits = 0;
    for (char c : Text().substr(2)) {
      int digit = c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
      bits = bits * 16 + static_cast<uint32_t>(digit);
    }
    *value = static_cast<float>(bits);
    return true;
  }
  bool negative = code == tok::kMinus;
  if (negative) code = GetToken();
  if (code != tok::kInteger && code != tok::kDecimal && code != tok::kExponent) {
    constant.Rewind();
    return false;
  }
  *value = ConstantValue(Text(), negative);
  return true;
}

std::string Tokenizer::DumpTokens() {
  std::string out;
  for (const Token& token : tokens_) {
    std::string_view text = TextOf(token);
    if (token.lexClass == tok::kString) {
      ListStringLiteral(out, text);
      continue;
    }
    TokenCode cat = tok::Category(token.code);
    bool spaced = token.code >= tok::kFirstCoded &&
                  (cat == tok::kLogical || cat == tok::kSecondary || cat == tok::kStatement);
    if (spaced) out += ' ';
    out += text;
    if (spaced) out += ' ';
  }
  return out;
}

void ListStringLiteral(std::string& out, std::string_view text) {
  if (text.empty()) {
    out += "\"\"";
    return;
  }
  char code[8];
  bool open = false;
  for (unsigned char c : text) {
    bool printable = c >= 32 && c <= 126 && c != '"';
    if (printable != open) {
      out += '"';
      open = printable;
    }
    if (printable) {
      out += static_cast<char>(c);
    } else {
      std::snprintf(code, sizeof code, "'%u", c);
      out += code;
    }
  }
  if (open) out += '"';
}
