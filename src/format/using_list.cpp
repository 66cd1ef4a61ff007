#include "format/using_list.h"

#include "base/dialect.h"
#include "expr/expr_context.h"
#include "lex/parse_attempt.h"

namespace {

class UsingNumericSpec final : public UsingSpec {
 public:
  explicit UsingNumericSpec(NumericExpPtr exp) : exp_(std::move(exp)) {}
  size_t Size() const override { return sizeof *this + exp_->Size(); }
  void List(std::string& out) const override { exp_->List(out); }
  FieldValue Evaluate() override { return {false, exp_->Evaluate(), {}}; }

 private:
  NumericExpPtr exp_;
};

class UsingStringSpec final : public UsingSpec {
 public:
  explicit UsingStringSpec(StringExpPtr exp) : exp_(std::move(exp)) {}
  size_t Size() const override { return sizeof *this + exp_->Size() + work_.Capacity(); }
  void List(std::string& out) const override { exp_->List(out); }
  FieldValue Evaluate() override { return {true, 0, exp_->Evaluate(work_)}; }

 private:
  StringExpPtr exp_;
  StringValue work_;  // grows once to the longest value and is reused
};

// A print function among the values: it does at its place what it does in PRINT.
class UsingFunctionSpec final : public UsingSpec {
 public:
  explicit UsingFunctionSpec(PrintSpecPtr function) : function_(std::move(function)) {}
  size_t Size() const override { return sizeof *this + function_->Size(); }
  void List(std::string& out) const override { function_->List(out); }
  FieldValue Evaluate() override { return {}; }
  PrintSpecList* Function() override { return function_.get(); }

 private:
  PrintSpecPtr function_;
};

// A numeric expression (string comparisons included), else a string one;
// under the classic switch TAB, SPA or LIN too.
UsingSpecPtr ParseUsingSpec(ExprContext& p) {
  ParseAttempt attempt(p);
  if (g_classic) {
    TokenCode code = p.GetToken();
    if (code == tok::kFnTab || code == tok::kFnSpa || code == tok::kFnLin) {
      PrintSpecPtr function = ParsePrintFunction(p, code);
      if (!function) return attempt.Fail();
      return std::make_unique<UsingFunctionSpec>(std::move(function));
    }
    attempt.Rewind();
  }
  if (NumericExpPtr exp = ParseNumericExp(p))
    return std::make_unique<UsingNumericSpec>(std::move(exp));
  ErrorCode numericError = g_err.parse;
  SetParseError(0);
  attempt.Rewind();
  if (StringExpPtr exp = ParseStringExp(p))
    return std::make_unique<UsingStringSpec>(std::move(exp));
  return attempt.Fail(numericError ? numericError : err::kBadExpression);
}

}  // namespace

bool UsingSpecList::Parse(ExprContext& p) {
  ParseAttempt attempt(p);
  do {
    UsingSpecPtr spec = ParseUsingSpec(p);
    if (!spec) {
      specs_.clear();
      attempt.Fail();
      return false;
    }
    specs_.push_back(std::move(spec));
  } while (p.Accept(tok::kComma));
  return true;
}

size_t UsingSpecList::Size() const {
  size_t size = specs_.capacity() * sizeof(UsingSpecPtr);
  for (const UsingSpecPtr& spec : specs_) size += spec->Size();
  return size;
}

void UsingSpecList::List(std::string& out) const {
  for (size_t i = 0; i < specs_.size(); ++i) {
    if (i) out += ',';
    specs_[i]->List(out);
  }
}

void UsingSpecList::PlaceFunctions(PrintSink& line) {
  for (; next_ < specs_.size(); ++next_) {
    PrintSpecList* function = specs_[next_]->Function();
    if (!function) return;
    function->Execute(line);
  }
}
