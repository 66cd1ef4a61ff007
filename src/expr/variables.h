// Variable references: expression leaves and assignment targets that the link
// pass binds to storage once, so reading them at run time is a pointer load.
// Inherited names: Simple is a scalar, Script an array element (from
// "subscript"), Parm a DEF parameter, Whole a string without a substring part.
#pragma once
#include <memory>
#include <string_view>
#include <vector>

#include "base/base_list.h"
#include "base/errors.h"
#include "expr/call_frames.h"
#include "expr/string_exp.h"
#include "value/numeric.h"
#include "value/strings.h"

class Statement;
class VarToken;

// The parameters of the DEF whose body is being parsed: a parameter's name
// binds to its slot of the call frame instead of the global variable.
class ParameterList {
 public:
  virtual ~ParameterList() = default;
  virtual int NumericSlot(const VarToken* name) const = 0;  // -1 when no parameter
  virtual int StringSlot(const VarToken* name) const = 0;
};

// Everything the link pass must bind; all of a program's references sit on one list.
class Reference : public BaseNode_T<Reference> {
 public:
  virtual ~Reference() = default;
  virtual ErrorCode Link(ExprContext& prog) = 0;
  // The statement whose location a link failure reports.
  Statement* owner = nullptr;
};

// An assignable numeric variable or array element.
class NumericVar : public NumericExp, public Reference {
 public:
  explicit NumericVar(const VarToken* name) : name_(name) {}
  virtual void Assign(float value) = 0;
  const VarToken* Name() const { return name_; }
  int Kind() const override { return static_cast<int>(tok::kNumVar); }

 protected:
  const VarToken* name_;
};

class NumericSimpleVar final : public NumericVar {
 public:
  using NumericVar::NumericVar;
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override;
  float Evaluate() override { return ReadValue(data_->value); }
  bool Test() override { return Evaluate() != 0.0f; }  // one call, not two: the class is final
  void Assign(float value) override { data_->value = value; }
  void Add(float value) { data_->value += value; }
  ErrorCode Link(ExprContext& prog) override;

 private:
  NumericSimpleData* data_ = nullptr;
};

// A numeric parameter inside a DEF body: a slot of the running call's frame.
class NumericParmVar final : public NumericVar {
 public:
  NumericParmVar(const VarToken* name, CallFrames& frames, unsigned slot)
      : NumericVar(name), frames_(frames), slot_(slot) {}
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override;
  float Evaluate() override;
  void Assign(float value) override;
  ErrorCode Link(ExprContext&) override { return 0; }

 private:
  CallFrames& frames_;
  unsigned slot_;
};

// An array element. The parser makes one of the classes in variables.cpp:
// one or two subscripts are read through operand forms, more through a list.
class NumericScriptVar : public NumericVar {
 public:
  NumericScriptVar(const VarToken* name, std::vector<NumericExpPtr> subscripts)
      : NumericVar(name), subscripts_(std::move(subscripts)) {}
  size_t Size() const override;
  void List(std::string& out) const override;
  ErrorCode Link(ExprContext& prog) override;

 protected:
  std::vector<NumericExpPtr> subscripts_;
  NumericScriptData* data_ = nullptr;
};

// An assignable string: a variable, an array element or a substring of one.
class StringVar : public StringExp {
 public:
  virtual void Assign(std::string_view text) = 0;
  virtual const VarToken* Name() const = 0;
  // The longest text a text file's line or item may put in it: the declared
  // length of a DIM or COM variable, else the longest string.
  virtual uint32_t Room() const { return kMaxStringLength; }
};

// A whole string variable or element, bound by the link pass.
class StringWholeVar : public StringVar, public Reference {
 public:
  explicit StringWholeVar(const VarToken* name) : name_(name) {}
  const VarToken* Name() const override { return name_; }
  // The stored value, or null after raising an error.
  virtual StringValue* Locate() = 0;
  std::string_view Evaluate(StringValue&) override {
    StringValue* value = Locate();
    return value ? value->View() : std::string_view();
  }
  void Assign(std::string_view text) override {
    if (StringValue* value = Locate()) value->Assign(text);
  }

 protected:
  const VarToken* name_;
};

class StringSimpleVar final : public StringWholeVar {
 public:
  using StringWholeVar::StringWholeVar;
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override;
  StringValue* Locate() override { return &data_->value; }
  bool Quiet() const override { return true; }
  ErrorCode Link(ExprContext& prog) override;
  uint32_t Room() const override { return data_->declared ? data_->declared : kMaxStringLength; }

 private:
  StringSimpleData* data_ = nullptr;
};

// A string parameter inside a DEF body.
class StringParmVar final : public StringWholeVar {
 public:
  StringParmVar(const VarToken* name, CallFrames& frames, unsigned slot)
      : StringWholeVar(name), frames_(frames), slot_(slot) {}
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override;
  StringValue* Locate() override;
  ErrorCode Link(ExprContext&) override { return 0; }

 private:
  CallFrames& frames_;
  unsigned slot_;
};

// A string array element, made like the numeric ones.
class StringScriptVar : public StringWholeVar {
 public:
  StringScriptVar(const VarToken* name, std::vector<NumericExpPtr> subscripts)
      : StringWholeVar(name), subscripts_(std::move(subscripts)) {}
  size_t Size() const override;
  void List(std::string& out) const override;
  ErrorCode Link(ExprContext& prog) override;
  uint32_t Room() const override { return data_->declared ? data_->declared : kMaxStringLength; }

 protected:
  std::vector<NumericExpPtr> subscripts_;
  StringScriptData* data_ = nullptr;
};

// The selector after a string variable: [s], [s,e] or [s;n].
class StringLimit {
 public:
  enum Form { kFirst, kRange, kLength };
  StringLimit(Form form, NumericExpPtr start, NumericExpPtr second)
      : form_(form), start_(std::move(start)), second_(std::move(second)) {}
  size_t Size() const;
  void List(std::string& out) const;
  Form form() const { return form_; }
  // Rounded start and, for ranges and lengths, the character count (start
  // evaluated first).
  void Evaluate(double* start, double* count) const;

 private:
  Form form_;
  NumericExpPtr start_;
  NumericExpPtr second_;  // the end or the length; null for kFirst
};

class StringSubVar final : public StringVar {
 public:
  StringSubVar(std::unique_ptr<StringWholeVar> base, std::unique_ptr<StringLimit> limit)
      : base_(std::move(base)), limit_(std::move(limit)) {}
  size_t Size() const override { return sizeof *this + base_->Size() + limit_->Size(); }
  void List(std::string& out) const override;
  const VarToken* Name() const override { return base_->Name(); }
  std::string_view Evaluate(StringValue& work) override;
  void Assign(std::string_view text) override;

 private:
  std::unique_ptr<StringWholeVar> base_;
  std::unique_ptr<StringLimit> limit_;
};

// A whole array as MAT statements name it, without subscripts. The link pass
// binds it, creating an undeclared array with ten elements as a reference
// with one subscript would.
class NumericMatrixVar final : public Reference {
 public:
  explicit NumericMatrixVar(const VarToken* name) : name_(name) {}
  ErrorCode Link(ExprContext& prog) override;
  void List(std::string& out) const;
  NumericScriptData& Data() const { return *data_; }

 private:
  const VarToken* name_;  // a symbol of the array table
  NumericScriptData* data_ = nullptr;
};

class StringMatrixVar final : public Reference {
 public:
  explicit StringMatrixVar(const VarToken* name) : name_(name) {}
  ErrorCode Link(ExprContext& prog) override;
  void List(std::string& out) const;
  StringScriptData& Data() const { return *data_; }

 private:
  const VarToken* name_;
  StringScriptData* data_ = nullptr;
};

// Variable parsers: null with the position restored when the next token is
// no variable of the kind (an error is stored only for a malformed one).
std::unique_ptr<NumericVar> ParseNumericVar(ExprContext& prog);
std::unique_ptr<StringVar> ParseStringVar(ExprContext& prog);
// A whole array: a name alone, or a name that brackets follow (which are left
// unread). Null with the position restored when no name of the kind is next.
std::unique_ptr<NumericMatrixVar> ParseNumericMatrix(ExprContext& prog);
std::unique_ptr<StringMatrixVar> ParseStringMatrix(ExprContext& prog);
