// Cuts a typed INPUT line into items: separated by commas, unquoted text is a
// string, a leading "0x" makes a hexadecimal number; under the classic switch
// a sign directly before a digit or point begins a number.
#pragma once
#include <cstddef>
#include <string_view>

#include "console/console.h"

// Lexical classes of typed items.
namespace item {
constexpr unsigned kEmpty = 0;  // a comma with nothing before it
constexpr unsigned kEnd = 2;
constexpr unsigned kBadExponent = 5;
constexpr unsigned kBadDecimal = 6;
constexpr unsigned kOpenQuote = 7;
constexpr unsigned kBadString = 8;
constexpr unsigned kBadNumber = 10;
constexpr unsigned kString = 11;
constexpr unsigned kInteger = 12;
constexpr unsigned kHex = 13;
constexpr unsigned kDecimal = 14;
constexpr unsigned kExponent = 15;
constexpr unsigned kText = 21;
// Integer, hexadecimal, decimal and exponent form: the items that are numbers.
inline bool IsNumber(unsigned cls) { return cls >= kInteger && cls <= kExponent; }
}  // namespace item

class InputScanner {
 public:
  // Scans the NUL-terminated line; a line feed also ends it.
  void Start(const char* line) { pos_ = line; }
  // Cuts the next item and returns its class; the item's text is then Text().
  unsigned Next();
  // The item's characters (quotes removed, character codes applied); NUL-terminated.
  std::string_view Text() const { return {item_, length_}; }
  const char* CText() const { return item_; }
  // The value of a number item of class cls, rounded to 32 bits.
  float Number(unsigned cls) const;

 private:
  int Peek() const { return *pos_ == '\n' ? 0 : static_cast<unsigned char>(*pos_); }
  int Take() {
    int c = Peek();
    if (c) ++pos_;
    return c;
  }
  void Keep(int c) { item_[length_++] = static_cast<char>(c); }
  // A comma (taken) or the end of the line closes an item.
  bool Closes() {
    int c = Peek();
    if (c == ',') ++pos_;
    return c == ',' || c == 0;
  }
  unsigned Finish(unsigned cls) {
    item_[length_] = '\0';
    return cls;
  }
  unsigned Hex();
  unsigned Number();
  unsigned Fraction();
  unsigned Exponent();
  unsigned Unquoted();
  unsigned Quoted();
  unsigned CharCode();
  unsigned AfterPiece();

  const char* pos_ = "";
  // An item never holds more characters than its line.
  char item_[Console::kLineMax + 1];
  size_t length_ = 0;
};
