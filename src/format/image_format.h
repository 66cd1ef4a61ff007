// IMAGE formats read once into a flat list of items that PRINT USING runs
// for every line: fields, literals, blanks, new lines and replicated groups.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/errors.h"

struct FormatItem {
  enum Kind : uint8_t {
    kEnd,       // the format's run ends: its text ended, or a field had an unknown letter
    kGroup,     // a replicated group opens: count in arg, its kGroupEnd at partner
    kGroupEnd,  // the group at partner closes
    kLiteral,   // characters [arg, arg + partner) of the format's text pool
    kNumeric,   // "d" or "e"
    kString,    // "a"
    kBlanks,    // "x": width blanks
    kNewLine,   // "/"
    kError,     // the line stops here with the code in arg
  };
  static constexpr uint8_t kLeft = 1, kSign = 2, kZero = 4;  // the flags "-", "s", "0"

  Kind kind = kEnd;
  uint8_t flags = 0;
  int16_t width = 0;       // 0: no fixed width ("*")
  int16_t precision = -1;  // -1: none given, or "*"
  uint32_t arg = 0;
  uint32_t partner = 0;
};

class ImageFormat final {
 public:
  // What ends the line: the control character at the format's start.
  enum Ending : uint8_t { kCrLf, kNone, kCr, kLf };
  // Longer formats stop the line at once; they bound the work of a run.
  static constexpr size_t kMaxText = 65535;

  ImageFormat() = default;
  explicit ImageFormat(std::string_view text) { Compile(text); }

  // Reads the whole text. Errors are not reported here: they become an item
  // that stops the line where the run reaches it, after what came before.
  void Compile(std::string_view text);

  Ending LineEnding() const { return ending_; }
  const std::vector<FormatItem>& Items() const { return items_; }
  std::string_view Text(const FormatItem& literal) const {
    return std::string_view(pool_).substr(literal.arg, literal.partner);
  }
  size_t Size() const { return items_.capacity() * sizeof(FormatItem) + pool_.capacity(); }

 private:
  class Reader;
  std::vector<FormatItem> items_;  // always ends in kEnd or kError
  std::string pool_;               // the literals' characters, back to back
  Ending ending_ = kCrLf;
};
