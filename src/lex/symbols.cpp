#include "lex/symbols.h"

#include <cstring>

namespace {
std::string_view Clip(std::string_view name) { return name.substr(0, VarToken::kMaxName); }
}  // namespace

VarToken::VarToken(std::string_view name, TokenCode code) : code_(code) {
  name = Clip(name);
  std::memcpy(name_, name.data(), name.size());
  name_[name.size()] = '\0';
}

const VarToken* SymbolTable::Find(std::string_view name) const {
  name = Clip(name);
  for (const auto& entry : buckets_[BucketOf(name)])
    if (SameName(entry->Name(), name)) return entry.get();
  return nullptr;
}

const VarToken* SymbolTable::FindOrCreate(std::string_view name) {
  if (const VarToken* found = Find(name)) return found;
  // A code must stay inside its category; a program this large gets no new names.
  if (Count() >= 0x1000) return nullptr;
  auto& bucket = buckets_[BucketOf(name)];
  bucket.push_back(std::make_unique<VarToken>(name, next_++));
  return bucket.back().get();
}
