// Symbol tables: every name of a program gets a stable code on first sight.
#pragma once
#include <memory>
#include <string_view>
#include <vector>

#include "lex/keywords.h"

// A program's name: variable, array or user function.
class VarToken final : public KeyToken {
 public:
  // Names are cut to this many characters, on entry and on lookup alike, so a
  // longer name always finds the symbol that its first 63 characters name (a
  // string name keeps its "$").
  static constexpr size_t kMaxName = 63;

  VarToken(std::string_view name, TokenCode code);
  TokenCode Code() const override { return code_; }
  const char* Name() const override { return name_; }
  unsigned Ordinal() const { return code_ & 0x0FFF; }

 private:
  char name_[kMaxName + 2];  // the spelling of first use, with a string name's "$"
  TokenCode code_;
};

class SymbolTable {
 public:
  explicit SymbolTable(TokenCode base) : base_(base), next_(base) {}
  const VarToken* Find(std::string_view name) const;
  const VarToken* FindOrCreate(std::string_view name);
  size_t Count() const { return next_ - base_; }
  size_t StorageSize() const { return Count() * sizeof(VarToken); }
  // Visits the entries bucket by bucket, A-Z then the rest, in insertion order.
  template <typename F>
  void Walk(F&& visit) const {
    for (const auto& bucket : buckets_)
      for (const auto& entry : bucket) visit(*entry);
  }

 private:
  TokenCode base_;  // first code handed out
  TokenCode next_;  // code of the next new entry; codes are never reused
  std::vector<std::unique_ptr<VarToken>> buckets_[kOtherBucket + 1];
};
