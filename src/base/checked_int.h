// Float to integer conversions that NaN and out-of-range values cannot break:
// such a value is refused, never converted. Counts, record numbers, file
// numbers and sizes all go through these.
#pragma once
#include <cmath>
#include <cstdint>

// floor(x + 0.5), the rounding of the language, when it lies in [low, high];
// false for NaN, infinities and values outside.
inline bool RoundInRange(double x, int64_t low, int64_t high, int64_t* out) {
  double r = std::floor(x + 0.5);
  if (!(r >= static_cast<double>(low) && r <= static_cast<double>(high))) return false;
  *out = static_cast<int64_t>(r);
  return true;
}
