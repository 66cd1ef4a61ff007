#include "lex/symbols.h"

#include <algorithm>
#include <cstring>

namespace {
// A name cut to its first 63 characters; a string name keeps its "$", so that
// its listing reads back as the same kind of name.
class Clip {
 public:
  explicit Clip(std::string_view name) {
    bool dollar = name.size() > VarToken::kMaxName && name.back() == '$';
    size_ = std::min(name.size(), VarToken::kMaxName);
    std::memcpy(text_, name.data(), size_);
    if (dollar) text_[size_++] = '$';
  }
  std::string_view View() const { return {text_, size_}; }

 private:
  char text_[VarToken::kMaxName + 1];
  size_t size_;
};
}  // namespace

VarToken::VarToken(std::string_view name, TokenCode code) : code_(code) {
  Clip clipped(name);
  name = clipped.View();
  std::memcpy(name_, name.data(), name.size());
  name_[name.size()] = '\0';
}

const VarToken* SymbolTable::Find(std::string_view name) const {
  Clip clipped(name);
  name = clipped.View();
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
