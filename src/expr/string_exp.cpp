#include "expr/string_exp.h"

#include "expr/expr_context.h"
#include "lex/parse_attempt.h"

int CompareStrings(std::string_view a, std::string_view b) {
  size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    // Signed bytes: characters 128-255 sort before the ASCII ones.
    auto x = static_cast<signed char>(a[i]), y = static_cast<signed char>(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

namespace {

class StringLit final : public StringExp {
 public:
  explicit StringLit(std::string_view text) : text_(text) {}
  size_t Size() const override { return sizeof *this + text_.size(); }
  int Kind() const override { return kLiteral; }
  bool Quiet() const override { return true; }
  void List(std::string& out) const override { ListStringLiteral(out, text_); }
  std::string_view Evaluate(StringValue&) override { return text_; }

 private:
  std::string text_;
};

class StringConcat final : public StringExp {
 public:
  StringConcat(StringExpPtr left, StringExpPtr right)
      : left_(std::move(left)), right_(std::move(right)) {}
  size_t Size() const override { return sizeof *this + left_->Size() + right_->Size(); }
  void List(std::string& out) const override {
    left_->List(out);
    out += '+';
    right_->List(out);
  }
  std::string_view Evaluate(StringValue& work) override {
    std::string_view left = left_->Evaluate(work);
    if (left.data() != work.Data()) {
      work.Clear();
      work.Append(left);
    } else {
      work.SetLength(static_cast<uint32_t>(left.size()));
    }
    std::string_view right = right_->Evaluate(temp_);
    if (uint64_t{work.Length()} + right.size() > kMaxLength) {
      SetRunError(err::kStringOverflow);
      return work.View();
    }
    work.Append(right);
    return work.View();
  }

 private:
  static constexpr uint64_t kMaxLength = 0x7FFFFFF;  // past this a string overflows
  StringExpPtr left_, right_;
  StringValue temp_;  // the right operand's work buffer, kept between evaluations
};

struct StrEq {
  static constexpr TokenCode kKind = tok::kEQ;
  static constexpr const char* kText = "=";
  static bool Test(int c) { return c == 0; }
};
struct StrNe {
  static constexpr TokenCode kKind = tok::kNE;
  static constexpr const char* kText = "<>";
  static bool Test(int c) { return c != 0; }
};
struct StrLt {
  static constexpr TokenCode kKind = tok::kLT;
  static constexpr const char* kText = "<";
  static bool Test(int c) { return c < 0; }
};
struct StrLe {
  static constexpr TokenCode kKind = tok::kLE;
  static constexpr const char* kText = "<=";
  static bool Test(int c) { return c <= 0; }
};
struct StrGt {
  static constexpr TokenCode kKind = tok::kGT;
  static constexpr const char* kText = ">";
  static bool Test(int c) { return c > 0; }
};
struct StrGe {
  static constexpr TokenCode kKind = tok::kGE;
  static constexpr const char* kText = ">=";
  static bool Test(int c) { return c >= 0; }
};

// A comparison of two strings, a numeric node yielding 1 or 0.
template <typename Op>
class StringRelation final : public NumericExp {
 public:
  StringRelation(StringExpPtr left, StringExpPtr right)
      : left_(std::move(left)), right_(std::move(right)), copyLeft_(!right_->Quiet()) {}
  int Kind() const override { return static_cast<int>(Op::kKind); }
  size_t Size() const override { return sizeof *this + left_->Size() + right_->Size(); }
  void List(std::string& out) const override {
    left_->List(out);
    out += Op::kText;
    right_->List(out);
  }
  float Evaluate() override { return Test() ? 1.0f : 0.0f; }
  bool Test() override {
    std::string_view left = left_->Evaluate(leftWork_);
    if (copyLeft_ && left.data() != leftWork_.Data()) {
      // The right side may change the variable the view points into.
      leftWork_.Clear();
      leftWork_.Append(left);
      left = leftWork_.View();
    }
    std::string_view right = right_->Evaluate(rightWork_);
    return Op::Test(CompareStrings(left, right));
  }

 private:
  StringExpPtr left_, right_;
  StringValue leftWork_, rightWork_;
  bool copyLeft_;  // a quiet right side cannot change what the left view shows
};

StringExpPtr ParseStringPrimary(ExprContext& p) {
  TokenCode code = p.Peek();
  switch (tok::Category(code)) {
    case tok::kStrUserFn:
      return ParseStringUserCall(p);
    case tok::kStrFunc:
      return ParseStringFunction(p);
    case tok::kStrVar:
    case tok::kStrArray:
      return ParseStringVar(p);
    default:
      break;
  }
  if (code == tok::kString) {
    p.GetToken();
    return std::make_unique<StringLit>(p.Text());
  }
  return nullptr;
}

}  // namespace

StringExpPtr MakeStringLit(std::string_view text) { return std::make_unique<StringLit>(text); }

StringExpPtr ParseStringExp(ExprContext& p) {
  StringExpPtr left = ParseStringPrimary(p);
  if (!left) return nullptr;
  for (;;) {
    ParseAttempt attempt(p);
    if (!p.Accept(tok::kPlus)) return left;
    StringExpPtr right = ParseStringPrimary(p);
    if (!right) return attempt.Fail();
    left = std::make_unique<StringConcat>(std::move(left), std::move(right));
  }
}

NumericExpPtr ParseStringRelationTail(ExprContext& p, StringExpPtr left) {
  ParseAttempt attempt(p);
  TokenCode op = p.GetToken();
  if (tok::Category(op) != tok::kRelation) return attempt.Fail();
  StringExpPtr right = ParseStringExp(p);
  if (!right) return attempt.Fail();
  switch (op) {
    case tok::kEQ:
      return std::make_unique<StringRelation<StrEq>>(std::move(left), std::move(right));
    case tok::kNE:
    case tok::kHash:
      return std::make_unique<StringRelation<StrNe>>(std::move(left), std::move(right));
    case tok::kLT:
      return std::make_unique<StringRelation<StrLt>>(std::move(left), std::move(right));
    case tok::kLE:
      return std::make_unique<StringRelation<StrLe>>(std::move(left), std::move(right));
    case tok::kGT:
      return std::make_unique<StringRelation<StrGt>>(std::move(left), std::move(right));
    default:
      return std::make_unique<StringRelation<StrGe>>(std::move(left), std::move(right));
  }
}
