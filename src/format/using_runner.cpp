#include "format/using_runner.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "base/convert.h"
#include "format/number_format.h"

namespace {

// Added before truncating so that a field of p decimals rounds (p = 0 to 9).
constexpr double kRoundingAddend[] = {0.5,      0.05,      0.005,      0.0005,      0.00005,
                                      0.000005, 0.0000005, 0.00000005, 0.000000005, 0.0000000005};
constexpr uint64_t kPowerOfTen[] = {1,      10,      100,      1000,      10000,
                                    100000, 1000000, 10000000, 100000000, 1000000000};
constexpr int kMaxDecimals = 9;  // further decimals are written as zeros

// Writes value's decimal digits ending at end; returns where they start.
char* Digits(uint64_t value, char* end, int minDigits) {
  char* p = end;
  do {
    *--p = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0 || end - p < minDigits);
  return p;
}

// A number in a text field reads as PRINT shows it, without its blanks.
std::string_view PrintedText(float value, char (&buffer)[kNumberBufferSize]) {
  int reserve;
  std::string_view text(buffer, FormatNumber(value, buffer, &reserve));
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

}  // namespace

ErrorCode FormatRunner::Run(const ImageFormat& format, UsingValues& values) {
  line_.clear();
  taken_ = 0;
  for (;;) {
    uint32_t before = taken_;
    if (ErrorCode code = Pass(format, values)) {
      if (code == err::kStringOverflow) line_.clear();
      return code;
    }
    // Values left over run the format again, unless a whole pass took none.
    if (!values.Remains() || taken_ == before) break;
  }
  static constexpr std::string_view kEndings[] = {"\r\n", "", "\r", "\n"};
  std::string_view ending = kEndings[format.LineEnding()];
  if (!Room(ending.size())) {
    line_.clear();
    return err::kStringOverflow;
  }
  line_ += ending;
  return 0;
}

void FormatRunner::Trim() {
  constexpr size_t kKeep = 1 << 16;
  if (line_.capacity() > kKeep) std::string().swap(line_);
}

ErrorCode FormatRunner::Pass(const ImageFormat& format, UsingValues& values) {
  const std::vector<FormatItem>& items = format.Items();
  frames_.clear();
  for (size_t i = 0;; ++i) {
    const FormatItem& item = items[i];
    bool fits = true;
    switch (item.kind) {
      case FormatItem::kEnd:
        return 0;
      case FormatItem::kError:
        return item.arg;
      case FormatItem::kLiteral: {
        std::string_view text = format.Text(item);
        fits = Room(text.size());
        if (fits) line_ += text;
        break;
      }
      case FormatItem::kNumeric:
      case FormatItem::kString:
        if (values.Remains()) {
          FieldValue value = values.Take();
          ++taken_;
          if (item.kind == FormatItem::kNumeric) {
            fits = value.isText ? Pad(value.text, 0, item) : Numeric(value.number, item);
          } else if (value.isText) {
            fits = Text(value.text, item);
          } else {
            char buffer[kNumberBufferSize];
            fits = Text(PrintedText(value.number, buffer), item);
          }
        }
        break;
      case FormatItem::kBlanks:
        fits = Fill(' ', static_cast<size_t>(item.width));
        break;
      case FormatItem::kNewLine:
        fits = Fill('\r', 1) && Fill('\n', 1);
        break;
      case FormatItem::kGroup:
        frames_.push_back({item.arg, taken_, line_.size()});
        break;
      case FormatItem::kGroupEnd: {
        Frame& frame = frames_.back();
        if (--frame.remaining == 0) {
          frames_.pop_back();
          break;
        }
        // A round that took no value leaves the same state behind, so every
        // further round would write what it wrote: copy that instead.
        if (taken_ == frame.taken) {
          fits = Repeat(frame.lineStart, frame.remaining);
          frames_.pop_back();
          break;
        }
        frame.taken = taken_;
        frame.lineStart = line_.size();
        i = item.partner;  // the group's first item is next
        break;
      }
    }
    if (!fits) return err::kStringOverflow;
  }
}

bool FormatRunner::Fill(char c, size_t n) {
  if (!Room(n)) return false;
  line_.append(n, c);
  return true;
}

bool FormatRunner::Repeat(size_t start, uint32_t times) {
  size_t length = line_.size() - start;
  if (length == 0) return true;
  if (times > (maxLine_ - line_.size()) / length) return false;
  line_.reserve(line_.size() + length * times);
  for (uint32_t t = 0; t < times; ++t) line_.append(line_.data() + start, length);
  return true;
}

// The field's fill goes in front of the text (and its sign), or after it
// when the field is left-justified; a text wider than the field stays whole.
bool FormatRunner::Pad(std::string_view text, size_t extraZeros, const FormatItem& field) {
  size_t length = text.size() + extraZeros;
  auto width = static_cast<size_t>(field.width);
  size_t fill = width > length ? width - length : 0;
  if (length > maxLine_ || !Room(length + fill)) return false;
  char c = (field.flags & FormatItem::kZero) ? '0' : ' ';
  bool left = field.flags & FormatItem::kLeft;
  if (!left) line_.append(fill, c);
  line_ += text;
  line_.append(extraZeros, '0');
  if (left) line_.append(fill, c);
  return true;
}

// Sign, rounded integer part, "." and exactly precision decimals.
bool FormatRunner::Numeric(float value, const FormatItem& field) {
  char buffer[64];  // sign, 39 digits of the largest float, "." and 9 decimals
  char* const end = buffer + sizeof buffer;
  char* p = buffer;
  double x = value;
  if (x < 0) {
    *p++ = '-';
    x = -x;
  } else if (field.flags & FormatItem::kSign) {
    *p++ = '+';
  }
  int decimals = std::max<int>(field.precision, 0);
  int exact = std::min(decimals, kMaxDecimals);
  if (!std::isfinite(x)) {
    const char* word = std::isnan(x) ? "NAN" : "INF";
    p = std::copy(word, word + 3, p);
    return Pad(std::string_view(buffer, static_cast<size_t>(p - buffer)), 0, field);
  }
  double rounded = x + kRoundingAddend[exact];
  double whole = std::floor(rounded);
  uint64_t integer;
  if (conv::ToUint64In(whole, &integer)) {
    char digits[24];
    char* first = Digits(integer, digits + sizeof digits, 1);
    p = std::copy(first, digits + sizeof digits, p);
  } else {
    // Beyond 64 bits: the double's exact integer value, at most 39 digits.
    int n = std::snprintf(p, static_cast<size_t>(end - p), "%.0f", whole);
    p += std::clamp(n, 0, 39);
  }
  if (decimals > 0) {
    *p++ = '.';
    uint64_t fraction = 0;
    if (!conv::ToUint64In((rounded - whole) * static_cast<double>(kPowerOfTen[exact]), &fraction))
      fraction = 0;
    fraction = std::min(fraction, kPowerOfTen[exact] - 1);
    char digits[16];
    char* first = Digits(fraction, digits + sizeof digits, exact);
    p = std::copy(first, digits + sizeof digits, p);
  }
  return Pad(std::string_view(buffer, static_cast<size_t>(p - buffer)),
             static_cast<size_t>(decimals - exact), field);
}

bool FormatRunner::Text(std::string_view text, const FormatItem& field) {
  if (field.precision >= 0 && static_cast<size_t>(field.precision) < text.size())
    text = text.substr(0, static_cast<size_t>(field.precision));
  return Pad(text, 0, field);
}
