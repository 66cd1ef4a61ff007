#include "value/numeric.h"

#include <cmath>
#include <new>

#include "base/convert.h"

DimensionList::DimensionList(std::vector<uint32_t> bounds)
    : bounds_(std::move(bounds)), strides_(bounds_.size(), 1) {
  for (size_t i = bounds_.size(); i-- > 1;) strides_[i - 1] = strides_[i] * bounds_[i];
}

void DimensionList::Assign(std::span<const uint32_t> bounds) {
  if (bounds.data() == bounds_.data()) return;  // its own bounds: nothing changes
  bounds_.assign(bounds.begin(), bounds.end());
  strides_.assign(bounds_.size(), 1);
  for (size_t i = bounds_.size(); i-- > 1;) strides_[i - 1] = strides_[i] * bounds_[i];
}

double DimensionList::Total() const {
  float total = 1.0f;
  for (uint32_t bound : bounds_) total *= static_cast<float>(bound);
  return total;
}

bool DimensionList::Compatible(const DimensionList& other) const {
  if (bounds_.size() != other.bounds_.size()) return false;
  for (size_t i = 0; i < bounds_.size(); ++i)
    if (static_cast<float>(bounds_[i]) != static_cast<float>(other.bounds_[i])) return false;
  return true;
}

void DimensionList::List(std::string& out) const {
  for (size_t i = 0; i < bounds_.size(); ++i) {
    if (i) out += ',';
    out += std::to_string(bounds_[i]);
  }
}

namespace {
// Zero-based index of one subscript, or -1 outside 1..bound after rounding (NaN too).
int64_t OneIndex(float s, uint32_t bound) {
  uint32_t index;
  return conv::SubscriptIndex(s, bound, &index) ? int64_t{index} : -1;
}
}  // namespace

ErrorCode ArrayShape::Reshape(std::span<const uint32_t> bounds) {
  uint64_t total = 1;
  for (uint32_t bound : bounds) {
    total *= bound;
    if (total > capacity) return err::kDimensionMismatch;
  }
  dims.Assign(bounds);
  count = static_cast<uint32_t>(total);
  return 0;
}

int64_t ElementIndex(const DimensionList& dims, const float* subscripts) {
  size_t last = dims.Count() - 1;
  int64_t index = OneIndex(subscripts[last], dims.Bound(last));
  if (index < 0) return -1;
  for (size_t i = 0; i < last; ++i) {
    int64_t first = OneIndex(subscripts[i], dims.Bound(i));
    if (first >= 0) index += first * dims.Stride(i);
  }
  return index;
}

ErrorCode MakeNumericArray(const VarToken* name, DimensionList dims,
                           std::unique_ptr<NumericScriptData>* out) {
  int64_t total;
  if (!conv::ToIntIn(dims.Total(), 0, kMaxElements, &total)) return err::kArrayTooBig;
  auto data = std::make_unique<NumericScriptData>();
  data->name = name;
  data->count = data->capacity = static_cast<uint32_t>(total);
  data->dims = std::move(dims);
  data->elements.reset(new (std::nothrow) float[data->count ? data->count : 1]);
  if (!data->elements) return err::kNoMemory;
  std::fill_n(data->elements.get(), data->count, UndefinedValue());
  *out = std::move(data);
  return 0;
}
