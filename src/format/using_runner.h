// Runs an IMAGE format over the values of one PRINT USING and builds the
// line in a buffer that is kept from line to line.
#pragma once
#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/print_sink.h"
#include "format/image_format.h"

// A value handed to a field: a number, or text.
struct FieldValue {
  bool isText = false;
  float number = 0;
  std::string_view text;  // valid until the next value is taken
};

// The values of one PRINT USING, taken in order; each is evaluated when taken.
class UsingValues {
 public:
  virtual ~UsingValues() = default;
  virtual bool Remains() const = 0;
  virtual FieldValue Take() = 0;
  // Does what the print functions (TAB, SPA, LIN) next in the list do, onto
  // line, up to the next value; they take no field.
  virtual void PlaceFunctions(PrintSink& /*line*/) {}
};

class FormatRunner final {
 public:
  // The longest line: that of the longest string. A longer one is dropped. Fuzzed
  // runs keep it short, so that one statement's output is written in moments.
#ifdef BASIC_FUZZ
  static constexpr size_t kMaxLine = 0xFFFFF;
#else
  static constexpr size_t kMaxLine = 0x7FFFFFF;
#endif

  explicit FormatRunner(size_t maxLine = kMaxLine) : maxLine_(maxLine) {}

  // Builds the line, line ending included, its first character at column
  // (for TAB). On an error the line holds what came before the failing item
  // and no ending (nothing after an overflow).
  ErrorCode Run(const ImageFormat& format, UsingValues& values, int64_t column = 0);
  std::string_view Line() const { return line_; }
  // Gives back a buffer that an unusually long line made large.
  void Trim();
  size_t Size() const { return line_.capacity() + frames_.capacity() * sizeof(Frame); }

 private:
  // An open group: how often its items are still to run, and the line and
  // value count when its current round began.
  struct Frame {
    uint32_t remaining;
    uint32_t taken;
    size_t lineStart;
  };

  // The line as a print sink, for the print functions in a list: no folding.
  class LineSink final : public PrintSink {
   public:
    explicit LineSink(FormatRunner& runner) : runner_(runner) {}
    void Print(char c) override;
    void Print(std::string_view text) override;
    int64_t Column() const override;
    int Width() const override { return 0; }
    int CursorX() const override {
      return static_cast<int>(std::min<int64_t>(Column(), INT32_MAX));
    }
    bool overflow_ = false;

   private:
    FormatRunner& runner_;
    mutable int64_t column_ = -1;  // -1 until asked for
  };

  ErrorCode Pass(const ImageFormat& format, UsingValues& values);
  // The print functions before the next value; false when the line overflowed.
  bool PlaceFunctions(UsingValues& values);
  bool Room(size_t n) const { return n <= maxLine_ - line_.size(); }
  bool Fill(char c, size_t n);
  bool Pad(std::string_view text, size_t extraZeros, const FormatItem& field);
  bool Numeric(float value, const FormatItem& field);
  bool Picture(float value, const FormatItem& field, std::string_view positions);
  bool Text(std::string_view text, const FormatItem& field);
  bool Repeat(size_t start, uint32_t times);

  std::string line_;
  std::vector<Frame> frames_;
  uint32_t taken_ = 0;  // values taken so far in this run
  int64_t startColumn_ = 0;
  size_t maxLine_;
};
