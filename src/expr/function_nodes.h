// Node bases and factories of the built-in functions, shared by their source files.
#pragma once
#include <cmath>
#include <cstdint>
#include <string>

#include "base/convert.h"
#include "expr/numeric_exp.h"
#include "expr/string_exp.h"
#include "lex/keywords.h"

// Writes a call as its keyword as written, "(", the arguments, ")".
template <typename Args>
void ListCall(std::string& out, const char* name, Args listArgs) {
  out += name;
  out += '(';
  listArgs(out);
  out += ')';
}

// A built-in numeric function: lists as its keyword as written, "(", arguments, ")".
class NumericLibFunc : public NumericExp {
 public:
  int Kind() const override { return static_cast<int>(key_->Code()); }
  void List(std::string& out) const override {
    ListCall(out, key_->Name(), [this](std::string& o) { ListArgs(o); });
  }

 protected:
  explicit NumericLibFunc(const KeyToken* key) : key_(key) {}
  virtual void ListArgs(std::string&) const {}

 private:
  const KeyToken* key_;
};

// A numeric function of one numeric argument.
class NumericArgFunc : public NumericLibFunc {
 public:
  size_t Size() const override { return sizeof *this + arg_->Size(); }

 protected:
  NumericArgFunc(const KeyToken* key, NumericExpPtr arg)
      : NumericLibFunc(key), arg_(std::move(arg)) {}
  void ListArgs(std::string& out) const override { arg_->List(out); }

  NumericExpPtr arg_;
};

// A built-in string function, listed like the numeric ones.
class StringLibFunc : public StringExp {
 public:
  int Kind() const override { return static_cast<int>(key_->Code()); }
  void List(std::string& out) const override {
    ListCall(out, key_->Name(), [this](std::string& o) { ListArgs(o); });
  }

 protected:
  explicit StringLibFunc(const KeyToken* key) : key_(key) {}
  virtual void ListArgs(std::string& out) const = 0;

 private:
  const KeyToken* key_;
};

// A count or start of the string functions: toward zero into 32 bits; values
// beyond the range saturate, NaN gives 0.
inline int32_t TruncInt(float x) {
  return static_cast<int32_t>(conv::ToIntClamped(x, INT32_MIN, INT32_MAX, 0));
}

// Makes work hold text, which may already lie inside work; the copy ends in a NUL.
std::string_view HoldIn(StringValue& work, std::string_view text);

class ExprContext;

// ABS to TAN, RND and PI; null for other codes.
NumericExpPtr MakeMathFunction(const KeyToken* key, NumericExpPtr arg);
NumericExpPtr MakePi(const KeyToken* key);
// TID, VER, BRK, TIM and SYS, and TYP, REC and ITM through the context; null
// for other codes.
NumericExpPtr MakeSystemFunction(const KeyToken* key, NumericExpPtr arg, ExprContext& prog);
// DEC, LEN and NUM/ASC (second null) and POS.
NumericExpPtr MakeStringArgFunction(const KeyToken* key, StringExpPtr first, StringExpPtr second);
// UPS$, CHR$, DEC$, LEFT$, RIGHT$, MID$; count is null for the two-argument MID$.
StringExpPtr MakeStringFunction(const KeyToken* key, StringExpPtr text, NumericExpPtr number,
                                NumericExpPtr count);
