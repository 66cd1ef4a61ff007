// The items of a CASE: values, relations and ranges tested against the selector.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "expr/string_exp.h"

class NumericCase {
 public:
  virtual ~NumericCase() = default;
  virtual size_t Size() const = 0;
  virtual void List(std::string& out) const = 0;
  virtual bool Matches(float selector) = 0;
  // True, with the least and greatest value it accepts, for a literal or a
  // range of literals: matching it then has no effect and no error.
  virtual bool Constant(float* /*low*/, float* /*high*/) const { return false; }
};
using NumericCasePtr = std::unique_ptr<NumericCase>;

// String items compare like string relations: signed bytes, then length.
class StringCase {
 public:
  virtual ~StringCase() = default;
  virtual size_t Size() const = 0;
  virtual void List(std::string& out) const = 0;
  virtual bool Matches(std::string_view selector) = 0;
};
using StringCasePtr = std::unique_ptr<StringCase>;

// True when the next item (after any relation) is a string expression.
bool StartsStringCase(ExprContext& p);
// Comma-separated items; empty with the parse error set when one is malformed.
std::vector<NumericCasePtr> ParseNumericCases(ExprContext& p);
std::vector<StringCasePtr> ParseStringCases(ExprContext& p);

template <typename Item>
size_t ItemsSize(const std::vector<std::unique_ptr<Item>>& items) {
  size_t size = 0;
  for (const auto& item : items) size += item->Size();
  return size;
}

// True when any item of the list matches the selector.
template <typename Item, typename Value>
bool AnyMatches(const std::vector<std::unique_ptr<Item>>& items, Value selector) {
  for (const auto& item : items)
    if (item->Matches(selector)) return true;
  return false;
}

template <typename Item>
void ListItems(std::string& out, const std::vector<std::unique_ptr<Item>>& items) {
  for (size_t i = 0; i < items.size(); ++i) {
    if (i) out += ',';
    items[i]->List(out);
  }
}
