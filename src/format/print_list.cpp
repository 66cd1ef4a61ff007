#include "format/print_list.h"

#include <climits>
#include <cmath>

#include "base/convert.h"
#include "base/print_sink.h"
#include "expr/expr_context.h"
#include "format/number_format.h"
#include "lex/parse_attempt.h"
#include "platform/break_flag.h"

void NewPrintLine(PrintSink& out) {
  out.Print('\r');
  out.Print('\n');
}

void FoldLine(PrintSink& out, int reserve) {
  int width = out.Width();
  int64_t column = out.Column();
  if (width > 0 && column != 0 && column + reserve > width) NewPrintLine(out);
}

void CommaZone(PrintSink& out) {
  if (out.CursorX() > 60) {
    NewPrintLine(out);
    return;
  }
  while (out.Column() % 15 != 0) out.Print(' ');
}

void PrintText(PrintSink& out, std::string_view text) {
  if (!text.empty()) FoldLine(out, static_cast<int>(std::min<size_t>(text.size(), INT_MAX)));
  out.Print(text);
}

namespace {

// A print function's count: the rounded argument, or 0 (nothing to do) for NaN
// and values beyond the 32-bit range.
int Count(double x) {
  int64_t n;
  return conv::ToIntIn(conv::RoundHalfUp(x), INT32_MIN, INT32_MAX, &n) ? static_cast<int>(n) : 0;
}

// Long runs of blanks or line feeds stop early on Ctrl+C or an ending signal;
// the run loop then reports the break at this statement.
bool Interrupted(int64_t i) { return (i & 0xFFFF) == 0xFFFF && StopPending(); }

// --- Joining nodes: the left item, then the rest of the list.

class PrintSpecGroup : public PrintSpecList {
 public:
  PrintSpecGroup(PrintSpecPtr left, PrintSpecPtr right)
      : left_(std::move(left)), right_(std::move(right)) {}
  size_t Size() const override { return sizeof *this + left_->Size() + right_->Size(); }

 protected:
  PrintSpecPtr left_, right_;
};

class PrintCommaSpecGroup final : public PrintSpecGroup {
 public:
  using PrintSpecGroup::PrintSpecGroup;
  void List(std::string& out) const override {
    left_->List(out);
    out += ',';
    right_->List(out);
  }
  int Kind() const override { return static_cast<int>(tok::kComma); }
  void Execute(PrintSink& out) override {
    left_->Execute(out);
    CommaZone(out);
    right_->Execute(out);
  }
};

class PrintSemiSpecGroup final : public PrintSpecGroup {
 public:
  using PrintSpecGroup::PrintSpecGroup;
  void List(std::string& out) const override {
    left_->List(out);
    out += ';';
    right_->List(out);
  }
  int Kind() const override { return static_cast<int>(tok::kSemicolon); }
  void Execute(PrintSink& out) override {
    left_->Execute(out);
    right_->Execute(out);
  }
};

// Items written side by side; a blank keeps the listing from gluing two names.
// A quoted literal before another literal would read back as one string, so
// those two are listed with a semicolon, which prints the same.
class PrintNoneSpecGroup final : public PrintSpecGroup {
 public:
  using PrintSpecGroup::PrintSpecGroup;
  void List(std::string& out) const override {
    left_->List(out);
    size_t at = out.size();
    right_->List(out);
    bool joins =
        at > 0 && out[at - 1] == '"' && at < out.size() && (out[at] == '"' || out[at] == '\'');
    out.insert(at, 1, joins ? ';' : ' ');
  }
  int Kind() const override { return 0; }
  void Execute(PrintSink& out) override {
    left_->Execute(out);
    right_->Execute(out);
  }
};

// --- Items.

class PrintNumericSpec final : public PrintSpecList {
 public:
  explicit PrintNumericSpec(NumericExpPtr exp) : exp_(std::move(exp)) {}
  size_t Size() const override { return sizeof *this + exp_->Size(); }
  void List(std::string& out) const override { exp_->List(out); }
  int Kind() const override { return exp_->Kind(); }
  void Execute(PrintSink& out) override { PrintNumber(out, exp_->Evaluate()); }

 private:
  NumericExpPtr exp_;
};

class PrintStringSpec final : public PrintSpecList {
 public:
  explicit PrintStringSpec(StringExpPtr exp) : exp_(std::move(exp)) {}
  size_t Size() const override { return sizeof *this + exp_->Size() + work_.Capacity(); }
  void List(std::string& out) const override { exp_->List(out); }
  int Kind() const override {
    return exp_->Kind() == StringExp::kLiteral ? StringExp::kLiteral : kStringItem;
  }
  void Execute(PrintSink& out) override { PrintText(out, exp_->Evaluate(work_)); }

 private:
  StringExpPtr exp_;
  StringValue work_;  // grows once to the longest value and is reused
};

class PrintFunctionSpec : public PrintSpecList {
 public:
  explicit PrintFunctionSpec(NumericExpPtr arg) : arg_(std::move(arg)) {}
  size_t Size() const override { return sizeof *this + arg_->Size(); }

 protected:
  void ListCall(std::string& out, const char* name) const {
    out += name;
    out += '(';
    arg_->List(out);
    out += ')';
  }
  // Rounded magnitude: the sign of TAB and SPA arguments is ignored.
  int Magnitude() { return Count(std::fabs(double{arg_->Evaluate()})); }

  NumericExpPtr arg_;
};

class PrintFuncTabSpec final : public PrintFunctionSpec {
 public:
  using PrintFunctionSpec::PrintFunctionSpec;
  void List(std::string& out) const override { ListCall(out, "TAB"); }
  int Kind() const override { return static_cast<int>(tok::kFnTab); }
  void Execute(PrintSink& out) override {
    int n = Magnitude();
    int64_t column = out.Column();
    if (n < 1 || n < column) return;
    int width = out.Width();
    if (width > 0 && column != 0 && n > column && n > width) {
      NewPrintLine(out);
      return;
    }
    for (int64_t i = 0; out.Column() < n && !Interrupted(i); ++i) out.Print(' ');
  }
};

class PrintFuncSpaSpec final : public PrintFunctionSpec {
 public:
  using PrintFunctionSpec::PrintFunctionSpec;
  void List(std::string& out) const override { ListCall(out, "SPA"); }
  int Kind() const override { return static_cast<int>(tok::kFnSpa); }
  void Execute(PrintSink& out) override {
    int n = Magnitude();
    if (n < 1) return;
    int width = out.Width();
    int64_t column = out.Column();
    if (width > 0 && column != 0 && column + n > width) {
      NewPrintLine(out);
      return;
    }
    for (int i = 0; i < n && !Interrupted(i); ++i) out.Print(' ');
  }
};

class PrintFuncLinSpec final : public PrintFunctionSpec {
 public:
  using PrintFunctionSpec::PrintFunctionSpec;
  void List(std::string& out) const override { ListCall(out, "LIN"); }
  int Kind() const override { return static_cast<int>(tok::kFnLin); }
  // LIN(n) starts n new lines; a negative count only feeds lines.
  void Execute(PrintSink& out) override {
    int n = Count(arg_->Evaluate());
    if (n == 0) return;
    if (n > 0) out.Print('\r');
    int64_t count = n > 0 ? n : -int64_t{n};
    for (int64_t i = 0; i < count && !Interrupted(i); ++i) out.Print('\n');
  }
};

// --- End markers.

class PrintNewLineSpec final : public PrintSpecList {
 public:
  size_t Size() const override { return sizeof *this; }
  void List(std::string&) const override {}
  int Kind() const override { return kNewLineEnd; }
  void Execute(PrintSink& out) override { NewPrintLine(out); }
};

class PrintEndSemiSpec final : public PrintSpecList {
 public:
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += ';'; }
  int Kind() const override { return kSemiEnd; }
  void Execute(PrintSink&) override {}
};

class PrintEndCommaSpec final : public PrintSpecList {
 public:
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += ','; }
  int Kind() const override { return kCommaEnd; }
  void Execute(PrintSink& out) override { CommaZone(out); }
};

}  // namespace

PrintSpecPtr ParsePrintFunction(ExprContext& p, TokenCode code) {
  ParseAttempt attempt(p);
  TokenCode open = p.AcceptOpener();
  if (!open) return attempt.Replace(err::kMissingLParen);
  NumericExpPtr arg = ParseNumericExp(p);
  if (!arg) return attempt.Fail(err::kBadNumericExp);
  if (!p.AcceptCloser(open)) return attempt.Replace(err::kMissingRParen);
  switch (code) {
    case tok::kFnTab:
      return std::make_unique<PrintFuncTabSpec>(std::move(arg));
    case tok::kFnSpa:
      return std::make_unique<PrintFuncSpaSpec>(std::move(arg));
    default:
      return std::make_unique<PrintFuncLinSpec>(std::move(arg));
  }
}

namespace {

// One item: a print function, else a numeric expression (string comparisons
// included), else a string expression. Null, with the position restored,
// when none fits; the error stays 0 when nothing item-like was there.
PrintSpecPtr ParsePrintItem(ExprContext& p) {
  ParseAttempt attempt(p);
  TokenCode code = p.GetToken();
  if (code == tok::kFnTab || code == tok::kFnSpa || code == tok::kFnLin) {
    PrintSpecPtr item = ParsePrintFunction(p, code);
    if (!item) return attempt.Fail();
    return item;
  }
  attempt.Rewind();
  if (NumericExpPtr exp = ParseNumericExp(p))
    return std::make_unique<PrintNumericSpec>(std::move(exp));
  ErrorCode numericError = g_err.parse;
  SetParseError(0);
  attempt.Rewind();
  if (StringExpPtr exp = ParseStringExp(p))
    return std::make_unique<PrintStringSpec>(std::move(exp));
  return attempt.Fail(numericError);
}

bool AtStatementEnd(ExprContext& p) {
  TokenCode next = p.Peek();
  return next == tok::kEndOfLine || next == tok::kComment;
}

}  // namespace

PrintSpecPtr ParsePrintFunctionItem(ExprContext& p) {
  TokenCode code = p.Peek();
  if (code != tok::kFnTab && code != tok::kFnSpa && code != tok::kFnLin) return nullptr;
  ParseAttempt attempt(p);
  p.GetToken();
  PrintSpecPtr item = ParsePrintFunction(p, code);
  if (!item) return attempt.Fail();
  return item;
}

// Items followed by another item without a separator are joined by a
// none-group; a separator at the end of the statement becomes the end marker.
bool ParsePrintList(ExprContext& p, PrintSpecPtr* items, PrintSpecPtr* end) {
  ParseAttempt attempt(p);
  PrintSpecPtr first = ParsePrintItem(p);
  if (!first) {
    attempt.Fail(err::kBadExpression);
    return false;
  }
  TokenCode sep = p.GetToken();
  if (sep != tok::kComma && sep != tok::kSemicolon) {
    p.BackUp();
    sep = 0;
  }
  if (AtStatementEnd(p)) {
    *items = std::move(first);
    if (sep == tok::kComma)
      *end = std::make_unique<PrintEndCommaSpec>();
    else if (sep == tok::kSemicolon)
      *end = std::make_unique<PrintEndSemiSpec>();
    else
      *end = std::make_unique<PrintNewLineSpec>();
    return true;
  }
  PrintSpecPtr rest;
  if (!ParsePrintList(p, &rest, end)) {
    attempt.Fail();
    return false;
  }
  if (sep == tok::kComma)
    *items = std::make_unique<PrintCommaSpecGroup>(std::move(first), std::move(rest));
  else if (sep == tok::kSemicolon)
    *items = std::make_unique<PrintSemiSpecGroup>(std::move(first), std::move(rest));
  else
    *items = std::make_unique<PrintNoneSpecGroup>(std::move(first), std::move(rest));
  return true;
}
