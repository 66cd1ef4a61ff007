// Conversions of the interpreter's floats to integers, and of doubles to its
// floats. Every float that becomes a count, position, subscript, bound, code,
// width, GDI number or time goes through one of these: NaN and values out of
// range are decided by the caller's rule, never by a bare cast, which would be
// undefined for them.
#pragma once
#include <cmath>
#include <cstdint>
#include <limits>

namespace conv {

// floor(x + 0.5): the rounding of positions, subscripts, selectors and codes.
inline double RoundHalfUp(double x) { return std::floor(x + 0.5); }

// True, with x truncated toward zero in *out, when that lies in [lo, hi];
// false for NaN, the infinities and every other x.
inline bool ToIntIn(double x, int64_t lo, int64_t hi, int64_t* out) {
  if (!(x > static_cast<double>(lo) - 1.0 && x < static_cast<double>(hi) + 1.0)) return false;
  *out = static_cast<int64_t>(x);
  return true;
}

// floor(x + 0.5) when it lies in [lo, hi]; false for NaN, the infinities and
// every other x. Record numbers, file units, counts and sizes.
inline bool RoundIn(double x, int64_t lo, int64_t hi, int64_t* out) {
  return ToIntIn(RoundHalfUp(x), lo, hi, out);
}

// The same for the whole unsigned 64-bit range: 0 <= x < 2^64.
inline bool ToUint64In(double x, uint64_t* out) {
  if (!(x >= 0.0 && x < 18446744073709551616.0)) return false;
  *out = static_cast<uint64_t>(x);
  return true;
}

// x truncated toward zero and held to [lo, hi]; NaN gives nan.
inline int64_t ToIntClamped(double x, int64_t lo, int64_t hi, int64_t nan) {
  if (std::isnan(x)) return nan;
  if (x <= static_cast<double>(lo)) return lo;
  if (x >= static_cast<double>(hi)) return hi;
  return static_cast<int64_t>(x);
}

// A graphics argument: rounded half up (-0.5 gives 0, -0.6 gives -1) and held
// to 32 bits. NaN gives INT32_MIN: every range check refuses it, and as a
// position it lies far off any picture.
inline int32_t RoundToInt32(float x) {
  return static_cast<int32_t>(ToIntClamped(RoundHalfUp(x), INT32_MIN, INT32_MAX, INT32_MIN));
}

// True, with the number in *out, when x is a whole number strictly inside the
// 32-bit range (INT32_MIN is left out, so a remainder by -1 cannot overflow).
inline bool ExactInt32(float x, int32_t* out) {
  if (!(x > -2147483648.0f && x < 2147483648.0f)) return false;
  auto whole = static_cast<int32_t>(x);  // in range: the cast truncates
  if (static_cast<float>(whole) != x) return false;
  *out = whole;
  return true;
}

// The zero-based index of an array subscript: x rounded half up when that lies
// in 1..bound; false otherwise, NaN included. RoundHalfUp and ToIntIn without
// the floor call: truncating a value of at least 1 is its floor.
inline bool SubscriptIndex(float x, uint32_t bound, uint32_t* index) {
  double shifted = double{x} + 0.5;
  if (!(shifted >= 1.0 && shifted < bound + 1.0)) return false;
  *index = static_cast<uint32_t>(shifted) - 1;
  return true;
}

// Doubles narrow to the interpreter's floats as IEEE arithmetic rounds: beyond
// the float range a result becomes an infinity, as 1E38*10 does, and NaN stays NaN.
static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

}  // namespace conv
