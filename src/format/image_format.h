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
    kPicture,   // a classic numeric field: its positions at [arg, arg + partner) of the pool
  };
  static constexpr uint8_t kLeft = 1, kSign = 2, kZero = 4;  // the flags "-", "s", "0"

  Kind kind = kEnd;
  uint8_t flags = 0;
  int16_t width = 0;       // 0: no fixed width ("*"); a picture's printed width
  int16_t precision = -1;  // -1: none given, or "*"; a picture's decimals
  uint32_t arg = 0;
  uint32_t partner = 0;
};

// A classic picture's positions, one character each in the pool.
namespace picture {
constexpr char kDigit = 'D', kBlank = 'X', kPoint = '.', kSign = 'S';
constexpr char kExponent = 'E';  // "E+dd": four positions, always last
constexpr int kMaxWidth = 255;   // the widest field the classic grammar takes
}  // namespace picture

class ImageFormat final {
 public:
  // What ends the line: the control character at the format's start.
  enum Ending : uint8_t { kCrLf, kNone, kCr, kLf };
  // This language's format letters, or those of the classic switch: fields of
  // D, A and X positions separated by commas (classic_image.cpp).
  enum Grammar : uint8_t { kOwn, kClassic };
  // Longer formats stop the line at once; they bound the work of a run.
  static constexpr size_t kMaxText = 65535;

  ImageFormat() = default;
  explicit ImageFormat(std::string_view text, Grammar grammar = kOwn) { Compile(text, grammar); }

  // Reads the whole text. Errors are not reported here: they become an item
  // that stops the line where the run reaches it, after what came before.
  void Compile(std::string_view text, Grammar grammar = kOwn);

  Grammar ReadAs() const { return grammar_; }
  // Classic formats start a new line each time the values run the format again.
  bool RerunsOnNewLine() const { return grammar_ == kClassic; }
  Ending LineEnding() const { return ending_; }
  const std::vector<FormatItem>& Items() const { return items_; }
  // A literal's characters, or a picture's positions.
  std::string_view Text(const FormatItem& item) const {
    return std::string_view(pool_).substr(item.arg, item.partner);
  }
  size_t Size() const { return items_.capacity() * sizeof(FormatItem) + pool_.capacity(); }

 private:
  class ReaderBase;
  class Reader;
  class ClassicReader;
  void ReadClassic(std::string_view text);  // classic_image.cpp
  std::vector<FormatItem> items_;           // always ends in kEnd or kError
  std::string pool_;                        // literals' characters and pictures, back to back
  Ending ending_ = kCrLf;
  Grammar grammar_ = kOwn;
};
