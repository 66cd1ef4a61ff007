#include "value/variable_store.h"

#include "lex/symbols.h"

namespace {
template <typename T>
std::unique_ptr<T>& Slot(std::vector<std::unique_ptr<T>>& heap, const VarToken* name) {
  unsigned ordinal = name->Ordinal();
  if (heap.size() <= ordinal) heap.resize(ordinal + 1);
  return heap[ordinal];
}
}  // namespace

NumericSimpleData* VariableStore::NumericSimple(const VarToken* name) {
  auto& slot = Slot(numSimple_, name);
  if (!slot) slot = std::make_unique<NumericSimpleData>(NumericSimpleData{name});
  return slot.get();
}

std::unique_ptr<NumericScriptData>& VariableStore::NumericArray(const VarToken* name) {
  return Slot(numArrays_, name);
}

StringSimpleData* VariableStore::StringSimple(const VarToken* name) {
  auto& slot = Slot(strSimple_, name);
  if (!slot) slot = std::make_unique<StringSimpleData>(StringSimpleData{name, StringValue(), 0});
  return slot.get();
}

NumericSimpleData* VariableStore::FindNumericSimple(const VarToken* name) const {
  unsigned ordinal = name->Ordinal();
  return ordinal < numSimple_.size() ? numSimple_[ordinal].get() : nullptr;
}

StringSimpleData* VariableStore::FindStringSimple(const VarToken* name) const {
  unsigned ordinal = name->Ordinal();
  return ordinal < strSimple_.size() ? strSimple_[ordinal].get() : nullptr;
}

std::unique_ptr<StringScriptData>& VariableStore::StringArray(const VarToken* name) {
  return Slot(strArrays_, name);
}

void VariableStore::Clear() {
  numSimple_.clear();
  numArrays_.clear();
  strSimple_.clear();
  strArrays_.clear();
}

size_t VariableStore::HeapSize() const {
  size_t size = 0;
  for (const auto& d : numSimple_)
    if (d) size += sizeof *d;
  for (const auto& d : numArrays_)
    if (d) size += sizeof *d + d->capacity * sizeof(float);
  for (const auto& d : strSimple_)
    if (d) size += sizeof *d + d->value.Capacity();
  for (const auto& d : strArrays_)
    if (d) {
      size += sizeof *d;
      for (uint32_t i = 0; i < d->capacity; ++i)
        size += sizeof(StringValue) + d->elements[i].Capacity();
    }
  return size;
}
