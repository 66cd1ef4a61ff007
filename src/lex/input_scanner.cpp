#include "lex/input_scanner.h"

#include <cstdlib>

#include "base/dialect.h"

namespace {
bool IsDigit(int c) { return c >= '0' && c <= '9'; }
bool IsHexDigit(int c) { return IsDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f'); }
}  // namespace

unsigned InputScanner::Next() {
  length_ = 0;
  while (Peek() == ' ') ++pos_;
  int c = Peek();
  if (c == 0) return Finish(item::kEnd);
  if (c == ',') {
    ++pos_;
    return Finish(item::kEmpty);
  }
  if (c == '"') return Quoted();
  if (c == '\'') return CharCode();
  if (c == '.') {
    Keep(Take());
    return Fraction();
  }
  if (c == '0') {
    Keep(Take());
    if ((Peek() | 0x20) == 'x') {
      Keep(Take());
      return Hex();
    }
    return Number();
  }
  if (IsDigit(c)) return Number();
  if ((c == '+' || c == '-') && g_classic) {
    // Old systems read a sign before a digit or point as a number's: -40, +.5.
    int next = static_cast<unsigned char>(pos_[1]);
    if (IsDigit(next) || next == '.') {
      Keep(Take());
      if (Peek() != '.') return Number();
      Keep(Take());
      return Fraction();
    }
  }
  return Unquoted();
}

unsigned InputScanner::Hex() {
  if (!IsHexDigit(Peek())) return Finish(item::kBadNumber);
  while (IsHexDigit(Peek())) Keep(Take());
  return Finish(Closes() ? item::kHex : item::kBadNumber);
}

unsigned InputScanner::Number() {
  while (IsDigit(Peek())) Keep(Take());
  if (Peek() == '.') {
    Keep(Take());
    return Fraction();
  }
  if ((Peek() | 0x20) == 'e') return Exponent();
  return Finish(Closes() ? item::kInteger : item::kBadNumber);
}

unsigned InputScanner::Fraction() {
  while (IsDigit(Peek())) Keep(Take());
  if ((Peek() | 0x20) == 'e') return Exponent();
  return Finish(Closes() ? item::kDecimal : item::kBadDecimal);
}

// At the letter E.
unsigned InputScanner::Exponent() {
  Keep(Take());
  int c = Peek();
  if (c == '+' || c == '-') {
    Keep(Take());
    if (!IsDigit(Peek())) return Finish(item::kBadExponent);
  } else if (!IsDigit(c)) {
    return Finish(item::kBadDecimal);
  }
  while (IsDigit(Peek())) Keep(Take());
  return Finish(Closes() ? item::kExponent : item::kBadDecimal);
}

// Inner runs of blanks are kept, trailing ones dropped.
unsigned InputScanner::Unquoted() {
  size_t blanks = 0;
  for (int c = Peek(); c != 0 && c != ','; c = Peek()) {
    ++pos_;
    if (c == ' ') {
      ++blanks;
      continue;
    }
    for (; blanks; --blanks) Keep(' ');
    Keep(c);
  }
  Closes();
  return Finish(item::kText);
}

// At a double quote.
unsigned InputScanner::Quoted() {
  ++pos_;
  for (int c = Take(); c != '"'; c = Take()) {
    if (c == 0) return Finish(item::kOpenQuote);
    Keep(c);
  }
  return AfterPiece();
}

// At an apostrophe: decimal digits name one character, 0 to 255.
unsigned InputScanner::CharCode() {
  ++pos_;
  if (!IsDigit(Peek())) return Finish(item::kBadString);
  unsigned code = 0;
  while (IsDigit(Peek())) {
    code = code * 10 + static_cast<unsigned>(Take() - '0');
    if (code > 255) return Finish(item::kBadString);
  }
  Keep(static_cast<int>(code));
  return AfterPiece();
}

// After a quoted piece or a character code: another piece may follow.
unsigned InputScanner::AfterPiece() {
  while (Peek() == ' ') ++pos_;
  int c = Peek();
  if (c == '"') return Quoted();
  if (c == '\'') return CharCode();
  return Finish(Closes() ? item::kString : item::kBadString);
}

float InputScanner::Number(unsigned cls) const {
  if (cls != item::kHex) return static_cast<float>(std::strtod(item_, nullptr));
  double value = 0;
  for (char c : Text().substr(2)) value = value * 16 + (c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
  return static_cast<float>(value);
}
