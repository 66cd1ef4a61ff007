// CONVERT: text to a number, with a branch for text that is no number, and a
// number to the text PRINT would write for it.
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <string>

#include "format/number_format.h"
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsHexDigit(char c) { return IsDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f'); }

// Blanks around an optional sign and a decimal number (digits, a point, an
// exponent) or "0x" and hexadecimal digits; a number outside the float range
// is no number either.
bool TextToNumber(std::string_view text, float* out) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  std::string number(text);
  size_t i = 0;
  bool negative = false;
  if (i < number.size() && (number[i] == '+' || number[i] == '-')) negative = number[i++] == '-';
  double value;
  if (number.size() - i > 2 && number[i] == '0' && (number[i + 1] | 0x20) == 'x') {
    value = 0;
    for (i += 2; i < number.size(); ++i) {
      char c = number[i];
      if (!IsHexDigit(c)) return false;
      value = value * 16 + (IsDigit(c) ? c - '0' : (c | 0x20) - 'a' + 10);
    }
    if (negative) value = -value;
  } else {
    size_t digits = 0;
    size_t start = i;
    for (; i < number.size() && IsDigit(number[i]); ++i) ++digits;
    if (i < number.size() && number[i] == '.')
      for (++i; i < number.size() && IsDigit(number[i]); ++i) ++digits;
    if (digits == 0) return false;
    if (i < number.size() && (number[i] | 0x20) == 'e') {
      ++i;
      if (i < number.size() && (number[i] == '+' || number[i] == '-')) ++i;
      size_t exponent = i;
      while (i < number.size() && IsDigit(number[i])) ++i;
      if (i == exponent) return false;
    }
    if (i != number.size()) return false;
    value = std::strtod(number.c_str() + start, nullptr);
    if (negative) value = -value;
  }
  if (!(std::fabs(value) <= FLT_MAX)) return false;
  *out = static_cast<float>(value);
  return true;
}

// CONVERT A$ TO X [, stmtId].
class ConvertNumberStmt final : public Statement {
 public:
  ConvertNumberStmt(StringExpPtr source, std::unique_ptr<NumericVar> target, TargetRef otherwise)
      : source_(std::move(source)), target_(std::move(target)), otherwise_(std::move(otherwise)) {}
  Statement* Execute() override {
    std::string_view text = source_->Evaluate(work_);
    if (g_err.run) return successor_;
    float value;
    if (!TextToNumber(text, &value)) return otherwise_ ? landing_ : Fail(err::kDataWrongType);
    target_->Assign(value);
    return successor_;
  }
  TokenCode Code() const override { return tok::kConvert; }
  size_t Size() const override {
    return sizeof *this + source_->Size() + target_->Size() + work_.Capacity();
  }
  void List(std::string& out) const override {
    out += "CONVERT ";
    source_->List(out);
    out += " TO ";
    target_->List(out);
    if (otherwise_) {
      out += ',';
      otherwise_.List(out);
    }
  }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    if (otherwise_) out.push_back(otherwise_.get());
  }
  ErrorCode Resolve(StmtContext&) override {
    if (!otherwise_) return 0;
    if (!otherwise_.Named()) return err::kUndefinedTarget;
    landing_ = otherwise_.Landing();
    return 0;
  }

 private:
  StringExpPtr source_;
  std::unique_ptr<NumericVar> target_;
  TargetRef otherwise_;  // where text that is no number goes; empty for an error
  Statement* landing_ = nullptr;
  StringValue work_;
};

// CONVERT X TO A$: the digits PRINT writes, without the blanks around them.
class ConvertStringStmt final : public Statement {
 public:
  ConvertStringStmt(NumericExpPtr source, std::unique_ptr<StringVar> target)
      : source_(std::move(source)), target_(std::move(target)) {}
  Statement* Execute() override {
    float value = source_->Evaluate();
    if (g_err.run) return successor_;
    char buffer[kNumberBufferSize];
    int reserve;
    std::string_view text(buffer, FormatNumber(value, buffer, &reserve));
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    target_->Assign(text);
    return successor_;
  }
  TokenCode Code() const override { return tok::kConvert; }
  size_t Size() const override { return sizeof *this + source_->Size() + target_->Size(); }
  void List(std::string& out) const override {
    out += "CONVERT ";
    source_->List(out);
    out += " TO ";
    target_->List(out);
  }

 private:
  NumericExpPtr source_;
  std::unique_ptr<StringVar> target_;
};

}  // namespace

// A string expression is tried first: "A$ TO" reads as text to number.
StatementPtr ParseConvert(StmtContext& p) {
  ParseAttempt attempt(p);
  ErrorCode before = g_err.parse;
  if (StringExpPtr text = ParseStringExp(p); text && p.Accept(tok::kTo)) {
    std::unique_ptr<NumericVar> target = ParseNumericVar(p);
    if (!target) return attempt.Fail(err::kBadNumericVar);
    TargetRef otherwise;
    if (p.Accept(tok::kComma) && !(otherwise = ParseTarget(p)))
      return attempt.Fail(err::kBadStmtNumber);
    return std::make_unique<ConvertNumberStmt>(std::move(text), std::move(target),
                                               std::move(otherwise));
  }
  attempt.Rewind();
  SetParseError(before);
  NumericExpPtr number = ParseNumericExp(p);
  if (!number) return attempt.Fail(err::kBadExpression);
  if (!p.Accept(tok::kTo)) return attempt.Fail(err::kMissingDelimiter);
  std::unique_ptr<StringVar> target = ParseStringVar(p);
  if (!target) return attempt.Fail(err::kBadStringVar);
  return std::make_unique<ConvertStringStmt>(std::move(number), std::move(target));
}
