// Checked conversions from floating values to integers: NaN and values out
// of the target's range are refused instead of being undefined behaviour.
#pragma once
#include <cstdint>

// The integer part of x when 0 <= x < 2^64; false for NaN and out-of-range x.
inline bool DoubleToUint64(double x, uint64_t* out) {
  if (!(x >= 0.0 && x < 18446744073709551616.0)) return false;
  *out = static_cast<uint64_t>(x);
  return true;
}
