#include "value/strings.h"

#include <new>

#include "base/convert.h"

ErrorCode MakeStringArray(const VarToken* name, DimensionList dims,
                          std::unique_ptr<StringScriptData>* out) {
  int64_t total;
  if (!conv::ToIntIn(dims.Total(), 0, kMaxElements, &total)) return err::kArrayTooBig;
  auto data = std::make_unique<StringScriptData>();
  data->name = name;
  data->count = data->capacity = static_cast<uint32_t>(total);
  data->dims = std::move(dims);
  // Every element allocates a block of its own: a shortage there is kNoMemory, not an abort.
  try {
    data->elements.reset(new StringValue[data->count ? data->count : 1]);
  } catch (const std::bad_alloc&) {
    return err::kNoMemory;
  }
  *out = std::move(data);
  return 0;
}
