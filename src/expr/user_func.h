// User-defined functions: the definitions DEF builds and the program registers
// at link time, and their parameter lists.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "expr/string_exp.h"
#include "expr/variables.h"
#include "lex/symbols.h"

// "(X,B$,...)": each parameter takes a slot of its kind in the call frame.
class ParameterSpec final : public ParameterList {
 public:
  struct Parameter {
    const VarToken* name;
    bool isString;
    unsigned slot;
  };

  int NumericSlot(const VarToken* name) const override { return SlotOf(name, false); }
  int StringSlot(const VarToken* name) const override { return SlotOf(name, true); }
  // False when the name is already a parameter.
  bool Add(const VarToken* name, bool isString);
  const std::vector<Parameter>& Parameters() const { return params_; }
  unsigned NumericCount() const { return numCount_; }
  unsigned StringCount() const { return strCount_; }
  void List(std::string& out) const;

 private:
  int SlotOf(const VarToken* name, bool isString) const;

  std::vector<Parameter> params_;
  unsigned numCount_ = 0, strCount_ = 0;
};

// One DEF FN definition: name, parameters and body.
class FuncSpec {
 public:
  virtual ~FuncSpec() = default;
  const VarToken* Name() const { return name_; }
  const ParameterSpec& Params() const { return params_; }
  bool IsString() const { return tok::Category(name_->Code()) == tok::kStrUserFn; }
  virtual size_t Size() const = 0;
  void List(std::string& out) const;  // "FNA(X,Y)=X*Y"

 protected:
  FuncSpec(const VarToken* name, ParameterSpec params) : name_(name), params_(std::move(params)) {}
  virtual void ListBody(std::string& out) const = 0;

 private:
  const VarToken* name_;
  ParameterSpec params_;
};

class FuncNumericSpec final : public FuncSpec {
 public:
  FuncNumericSpec(const VarToken* name, ParameterSpec params, NumericExpPtr body)
      : FuncSpec(name, std::move(params)), body_(std::move(body)) {}
  NumericExp& Body() const { return *body_; }
  size_t Size() const override { return sizeof *this + body_->Size(); }

 private:
  void ListBody(std::string& out) const override { body_->List(out); }
  NumericExpPtr body_;
};

class FuncStringSpec final : public FuncSpec {
 public:
  FuncStringSpec(const VarToken* name, ParameterSpec params, StringExpPtr body)
      : FuncSpec(name, std::move(params)), body_(std::move(body)) {}
  StringExp& Body() const { return *body_; }
  size_t Size() const override { return sizeof *this + body_->Size(); }

 private:
  void ListBody(std::string& out) const override { body_->List(out); }
  StringExpPtr body_;
};

// The definition after DEF: "FNA(params)=numericExp" or "FNA$(params)=stringExp".
// Null with the parse error set (position restored) when there is none.
std::unique_ptr<FuncSpec> ParseFuncSpec(ExprContext& prog);
