// Numeric storage: 32-bit values with an undefined mark, scalars and arrays.
#pragma once
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/errors.h"

class VarToken;

// Never produced by arithmetic; only storage reads compare against these bits.
constexpr uint32_t kUndefinedBits = 0xFFFF0000u;
inline float UndefinedValue() {
  float value;
  std::memcpy(&value, &kUndefinedBits, sizeof value);
  return value;
}
inline bool IsUndefined(float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits == kUndefinedBits;
}

// Reads a stored value: the undefined mark reads as 0 and raises kUndefinedValue.
inline float ReadValue(float stored) {
  if (IsUndefined(stored)) [[unlikely]] {
    SetRunError(err::kUndefinedValue);
    return 0.0f;
  }
  return stored;
}

// The largest element count an array may have. Fuzzed runs keep arrays small, so
// that one whole-array statement (a product, an inverse) ends in moments.
#ifdef BASIC_FUZZ
constexpr uint32_t kMaxElements = 0xFFFF;
#else
constexpr uint32_t kMaxElements = 0xFFFFFF;
#endif

// Bounds of an array, first to last; the last subscript varies fastest.
class DimensionList {
 public:
  DimensionList() = default;
  explicit DimensionList(std::vector<uint32_t> bounds);
  // New bounds in place: MAT redimensions arrays while a program runs, and
  // the vectors keep their room so that this does not allocate.
  void Assign(std::span<const uint32_t> bounds);
  size_t Count() const { return bounds_.size(); }
  uint32_t Bound(size_t i) const { return bounds_[i]; }
  uint32_t Stride(size_t i) const { return strides_[i]; }
  std::span<const uint32_t> Bounds() const { return bounds_; }
  // Product of the bounds formed as a float, as the element count is defined.
  double Total() const;
  bool Compatible(const DimensionList& other) const;
  void List(std::string& out) const;  // bounds separated by ","

 private:
  std::vector<uint32_t> bounds_;
  std::vector<uint32_t> strides_;  // product of the bounds after each one
};

// Zero-based element index of subscripts (already evaluated) against dims, or
// -1 when out of bounds. Only the last subscript is ever reported: an earlier
// one out of its bound adds nothing and the access addresses the first row.
int64_t ElementIndex(const DimensionList& dims, const float* subscripts);

struct NumericSimpleData {
  const VarToken* name;
  float value = UndefinedValue();
};

// The shape of an array: its bounds now, and the room it was created with,
// which MAT may redimension it within.
struct ArrayShape {
  DimensionList dims;
  uint32_t count = 0;     // elements of the current bounds
  uint32_t capacity = 0;  // elements allocated when the array was created
  // New bounds (each at least 1); kDimensionMismatch when they hold more than the capacity.
  ErrorCode Reshape(std::span<const uint32_t> bounds);
};

struct NumericScriptData : ArrayShape {
  const VarToken* name;
  std::unique_ptr<float[]> elements;
};

// Creates an array; 59 when it has too many elements, 3 when memory is short.
ErrorCode MakeNumericArray(const VarToken* name, DimensionList dims,
                           std::unique_ptr<NumericScriptData>* out);
