// Checked conversions from the interpreter's floats to integers: NaN and
// values out of range are decided here, never by a bare cast.
#pragma once
#include <cmath>
#include <cstdint>

// Adds 0.5 and floors (so -0.5 gives 0 and -0.6 gives -1), then limits the
// result to the 32-bit range. NaN gives INT32_MIN: every range check refuses
// it, and as a position it lies far off any picture.
inline int32_t RoundToInt32(float value) {
  if (std::isnan(value)) return INT32_MIN;
  double rounded = std::floor(double{value} + 0.5);
  if (rounded <= -2147483648.0) return INT32_MIN;
  if (rounded >= 2147483647.0) return INT32_MAX;
  return static_cast<int32_t>(rounded);
}
