#include "format/number_format.h"

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "base/convert.h"
#include "base/print_sink.h"
#include "format/print_list.h"

namespace {

// A float truncated to 32 bits the way the hardware does it: out-of-range
// values become INT_MIN, which the magnitude tests send to the exponent form.
int32_t Truncate(double x) {
  int64_t whole;
  return conv::ToIntIn(x, INT32_MIN, INT32_MAX, &whole) ? static_cast<int32_t>(whole) : INT32_MIN;
}

// What " %-Wd" + tail prints for i >= 0 and "%+-(W+1)d" + tail for i < 0:
// the sign or a blank, the digits left-justified in width W, then tail.
// |i| is at most 999999 here.
int FormatWhole(char* out, int32_t i, int width, const char* tail) {
  char digits[8];
  int count = 0;
  uint32_t magnitude = i < 0 ? 0u - static_cast<uint32_t>(i) : static_cast<uint32_t>(i);
  do {
    digits[count++] = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude);
  char* p = out;
  *p++ = i < 0 ? '-' : ' ';
  for (int k = count; k-- > 0;) *p++ = digits[k];
  for (int k = count; k < width; ++k) *p++ = ' ';
  while (*tail) *p++ = *tail++;
  *p = '\0';
  return static_cast<int>(p - out);
}

}  // namespace

size_t FormatNumber(float value, char (&buffer)[kNumberBufferSize], int* reserve) {
  constexpr size_t n = kNumberBufferSize;
  double x = value;
  double whole;
  int length;
  if (!std::isfinite(x)) {
    // In the exponent form's place. NaN has no sign to show: it prints " NAN"
    // whichever bits made it, so 0/0 and -(0/0) look alike.
    *reserve = 11;
    length = snprintf(buffer, n, "%-11s   ", std::isnan(x) ? " NAN" : x > 0 ? " INF" : "-INF");
  } else if (std::modf(x, &whole) == 0.0) {
    int32_t i = Truncate(x);
    // Below a million %lg and %lG print a whole number as its digits, so every
    // whole form is digits laid out by hand: snprintf's float path is slow.
    if (i >= -999 && i <= 999) {
      *reserve = 4;
      length = FormatWhole(buffer, i, 3, "  ");
    } else if (i >= -32767 && i <= 32767) {
      *reserve = 6;
      length = FormatWhole(buffer, i, i < 0 ? 4 : 5, "   ");  // one narrower when negative
    } else if (i >= -99999 && i <= 99999) {
      *reserve = 8;
      length = FormatWhole(buffer, i, 5, ".    ");
    } else if (i >= -999999 && i <= 999999) {
      *reserve = 8;
      length = FormatWhole(buffer, i, 6, ".    ");
    } else {
      *reserve = 11;
      length =
          x >= 0 ? snprintf(buffer, n, " %-10.5lE   ", x) : snprintf(buffer, n, "%+-11.5lE   ", x);
    }
  } else if (x > -999999.5 && x < 999999.5) {
    *reserve = 8;
    length =
        x >= 0 ? snprintf(buffer, n, " %-6.5lG    ", x) : snprintf(buffer, n, "%+-7.5lG    ", x);
  } else {
    *reserve = 11;
    length =
        x >= 0 ? snprintf(buffer, n, " %-10.5lE   ", x) : snprintf(buffer, n, "%+-11.5lE   ", x);
  }
  return length < 0 ? 0 : static_cast<size_t>(length);
}

void PrintNumber(PrintSink& out, float value) {
  char buffer[kNumberBufferSize];
  int reserve;
  size_t length = FormatNumber(value, buffer, &reserve);
  FoldLine(out, reserve);
  out.Print(std::string_view(buffer, length));
}
