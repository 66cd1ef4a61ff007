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

// x >= 0 rounded to `decimals` places as fields round (exact to nine places,
// zeros after): writes the whole part without leading zeros ("0" for none),
// then exactly `decimals` digits, and returns the whole part's length. out
// holds kRoundedMax characters.
constexpr size_t kRoundedMax = 320 + picture::kMaxWidth;
size_t RoundedDigits(double x, int decimals, char* out) {
  int exact = std::min(decimals, kMaxDecimals);
  double rounded = x + kRoundingAddend[exact];
  double whole = std::floor(rounded);
  char* p = out;
  uint64_t integer;
  char digits[24];
  if (conv::ToUint64In(whole, &integer)) {
    char* first = Digits(integer, digits + sizeof digits, 1);
    p = std::copy(first, digits + sizeof digits, p);
  } else {
    // Beyond 64 bits (at most 10^255 here): the double's exact integer value.
    int n = std::snprintf(p, 320, "%.0f", whole);
    p += std::clamp(n, 0, 319);
  }
  auto wholeLength = static_cast<size_t>(p - out);
  if (exact > 0) {
    uint64_t fraction = 0;
    if (!conv::ToUint64In((rounded - whole) * static_cast<double>(kPowerOfTen[exact]), &fraction))
      fraction = 0;
    fraction = std::min(fraction, kPowerOfTen[exact] - 1);
    char* first = Digits(fraction, digits + sizeof digits, exact);
    p = std::copy(first, digits + sizeof digits, p);
  }
  std::fill_n(p, decimals - exact, '0');
  return wholeLength;
}

// The digits of x for an exponent field with `lead` digits before the point
// (none: the mantissa lies in [0.1, 1)) and `decimals` after it, rounded half
// up from the value's exact decimal digits; writes them to out (kRoundedMax)
// and returns how many stand before the point. False when the exponent needs
// more than two digits.
bool ScientificDigits(double x, int lead, int decimals, char* out, size_t* wholeLength,
                      int* exponent) {
  auto kept = static_cast<size_t>(lead + decimals);
  if (x == 0) {
    *wholeLength = lead > 0 ? 1 : 0;
    std::fill_n(out, *wholeLength + static_cast<size_t>(decimals), '0');
    *exponent = 0;
    return true;
  }
  // 121 significant digits hold any float's value exactly.
  char text[160];
  int n = std::snprintf(text, sizeof text, "%.120e", x);
  if (n <= 0 || static_cast<size_t>(n) >= sizeof text) return false;
  char significant[122];
  significant[0] = text[0];
  std::copy(text + 2, text + 122, significant + 1);
  int power = std::atoi(text + 123);  // x = d.ddd... * 10^power
  size_t available = std::min<size_t>(kept, 121);
  std::copy(significant, significant + available, out);
  std::fill(out + available, out + kept, '0');
  if (kept < 121 && significant[kept] >= '5') {
    // Half up; a carry out of the first digit moves the exponent.
    size_t i = kept;
    while (i > 0 && out[i - 1] == '9') out[--i] = '0';
    if (i > 0) {
      ++out[i - 1];
    } else {
      out[0] = '1';
      ++power;
    }
  }
  int e = power - (lead - 1);
  if (e < -99 || e > 99) return false;
  *wholeLength = static_cast<size_t>(lead);
  *exponent = e;
  return true;
}

// Lays a number into a classic picture, out holding the field's width of
// blanks: digits right-aligned before the point, leading zeros blank, X a
// blank, E as "E+dd", and the sign ("-", or "+" with S) just before the first
// character printed. False when the number does not fit.
bool LayPicture(double x, const FormatItem& field, std::string_view positions, char* out) {
  if (!std::isfinite(x)) return false;
  bool negative = x < 0;
  x = std::fabs(x);
  bool signed_ = field.flags & FormatItem::kSign;
  int decimals = field.precision;
  // Where each position prints; the exponent takes four.
  int16_t whole[picture::kMaxWidth], fraction[picture::kMaxWidth];
  int wholeSlots = 0, fractionSlots = 0, point = -1, exponentAt = -1, at = 0;
  for (char c : positions) {
    if (c == picture::kDigit) {
      int16_t& slot = point < 0 ? whole[wholeSlots++] : fraction[fractionSlots++];
      slot = static_cast<int16_t>(at);
    } else if (c == picture::kPoint) {
      point = at;
    } else if (c == picture::kExponent) {
      exponentAt = at;
      at += 3;
    }
    ++at;
  }
  int exponent = 0;
  char digits[kRoundedMax];
  size_t length;
  if (exponentAt >= 0) {
    // Without S a negative mantissa leaves the first position to its sign.
    int lead = std::max(wholeSlots - (negative && !signed_ ? 1 : 0), 0);
    if (lead == 0 && decimals == 0) return false;
    if (!ScientificDigits(x, lead, decimals, digits, &length, &exponent)) return false;
    // Leading zeros of the mantissa are blank, as in any whole part.
    size_t zeros = 0;
    while (zeros + 1 < length && digits[zeros] == '0') ++zeros;
    std::copy(digits + zeros, digits + length + static_cast<size_t>(decimals), digits);
    length -= zeros;
  } else {
    length = RoundedDigits(x, decimals, digits);
  }
  auto wholeLength = static_cast<int>(length);
  bool zero = std::all_of(digits, digits + length + static_cast<size_t>(decimals),
                          [](char c) { return c == '0'; });
  char sign = negative && !zero ? '-' : signed_ ? '+' : '\0';
  // A zero whole part prints as "0" where it has a position.
  if (wholeLength == 1 && digits[0] == '0' && wholeSlots == 0) wholeLength = 0;
  if (wholeLength > wholeSlots) return false;
  for (int i = 0; i < wholeLength; ++i) out[whole[wholeSlots - wholeLength + i]] = digits[i];
  if (point >= 0) out[point] = '.';
  for (int i = 0; i < fractionSlots; ++i) out[fraction[i]] = digits[length + i];
  if (sign) {
    int first = wholeLength ? whole[wholeSlots - wholeLength] : point;
    if (first == 0 && wholeLength == 1 && digits[0] == '0' && point > 0) {
      // "-.50" rather than no room: the zero gives its position to the sign.
      out[first] = ' ';
      first = point;
    }
    if (first <= 0) return false;
    out[first - 1] = sign;
  }
  if (exponentAt >= 0) {
    out[exponentAt] = 'E';
    out[exponentAt + 1] = exponent < 0 ? '-' : '+';
    out[exponentAt + 2] = static_cast<char>('0' + std::abs(exponent) / 10);
    out[exponentAt + 3] = static_cast<char>('0' + std::abs(exponent) % 10);
  }
  return true;
}

}  // namespace

ErrorCode FormatRunner::Run(const ImageFormat& format, UsingValues& values, int64_t column) {
  line_.clear();
  taken_ = 0;
  startColumn_ = column;
  // Print functions act where they stand in the list: those before the first
  // value at once, the others right after the value before them.
  if (!PlaceFunctions(values)) {
    line_.clear();
    return err::kStringOverflow;
  }
  for (;;) {
    uint32_t before = taken_;
    if (ErrorCode code = Pass(format, values)) {
      if (code == err::kStringOverflow) line_.clear();
      return code;
    }
    // Values left over run the format again, unless a whole pass took none.
    if (!values.Remains() || taken_ == before) break;
    if (format.RerunsOnNewLine() && !(Fill('\r', 1) && Fill('\n', 1))) {
      line_.clear();
      return err::kStringOverflow;
    }
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
      case FormatItem::kPicture:
      case FormatItem::kString:
        if (values.Remains()) {
          FieldValue value = values.Take();
          ++taken_;
          if (item.kind == FormatItem::kPicture) {
            fits = value.isText ? Pad(value.text, 0, item)
                                : Picture(value.number, item, format.Text(item));
          } else if (item.kind == FormatItem::kNumeric) {
            fits = value.isText ? Pad(value.text, 0, item) : Numeric(value.number, item);
          } else if (value.isText) {
            fits = Text(value.text, item);
          } else {
            char buffer[kNumberBufferSize];
            fits = Text(PrintedText(value.number, buffer), item);
          }
          if (fits) fits = PlaceFunctions(values);
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

bool FormatRunner::PlaceFunctions(UsingValues& values) {
  LineSink sink(*this);
  values.PlaceFunctions(sink);
  return !sink.overflow_;
}

// The characters after the line's last carriage return, line feeds not
// counted; found only when a print function asks.
int64_t FormatRunner::LineSink::Column() const {
  if (column_ < 0) {
    const std::string& line = runner_.line_;
    size_t start = line.find_last_of('\r');
    start = start == std::string::npos ? 0 : start + 1;
    column_ = start == 0 ? runner_.startColumn_ : 0;
    for (size_t i = start; i < line.size(); ++i) column_ += line[i] != '\n';
  }
  return column_;
}

// The column moves on past an overflow too, so that TAB's loop ends.
void FormatRunner::LineSink::Print(char c) {
  int64_t column = Column();
  if (!overflow_ && !runner_.Fill(c, 1)) overflow_ = true;
  column_ = c == '\r' ? 0 : column + (c != '\n');
}

void FormatRunner::LineSink::Print(std::string_view text) {
  for (char c : text) Print(c);
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

bool FormatRunner::Picture(float value, const FormatItem& field, std::string_view positions) {
  auto width = static_cast<size_t>(field.width);
  if (!Room(width)) return false;
  size_t start = line_.size();
  line_.append(width, ' ');
  if (!LayPicture(value, field, positions, &line_[start])) std::fill_n(&line_[start], width, '*');
  return true;
}

bool FormatRunner::Text(std::string_view text, const FormatItem& field) {
  if (field.precision >= 0 && static_cast<size_t>(field.precision) < text.size())
    text = text.substr(0, static_cast<size_t>(field.precision));
  return Pad(text, 0, field);
}
