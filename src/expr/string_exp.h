// String expression trees: literals, variables, substrings, functions, "+".
#pragma once
#include <memory>
#include <string>
#include <string_view>

#include "expr/numeric_exp.h"
#include "value/string_value.h"

class StringExp {
 public:
  static constexpr int kLiteral = 11;

  virtual ~StringExp() = default;
  virtual size_t Size() const = 0;
  virtual void List(std::string& out) const = 0;
  virtual int Kind() const { return 0; }
  // The value: a view of the node's own text or storage, or of work, which
  // the node may fill. The view is valid until the next evaluation or assignment.
  virtual std::string_view Evaluate(StringValue& work) = 0;
  // True when evaluating changes nothing a view of another value could point
  // into (no call, no function work area): a literal or a plain variable.
  virtual bool Quiet() const { return false; }
};
using StringExpPtr = std::unique_ptr<StringExp>;

// A concatenation of string primaries.
StringExpPtr ParseStringExp(ExprContext& prog);
// After a string expression: a relational operator and a second string
// expression, giving a numeric 1/0 node; null (position restored) when absent.
NumericExpPtr ParseStringRelationTail(ExprContext& prog, StringExpPtr left);

// Built-in string function call (category tok::kStrFunc), or null without an error.
StringExpPtr ParseStringFunction(ExprContext& prog);
// User string function call (category tok::kStrUserFn), or null.
StringExpPtr ParseStringUserCall(ExprContext& prog);

// A literal node, for parsers that build trees of their own.
StringExpPtr MakeStringLit(std::string_view text);

// Signed-byte comparison, then length: <0, 0 or >0.
int CompareStrings(std::string_view a, std::string_view b);
