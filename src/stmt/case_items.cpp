#include "stmt/case_items.h"

#include <type_traits>

#include "expr/expr_context.h"
#include "expr/operands.h"
#include "lex/parse_attempt.h"

namespace {

const char* RelationText(TokenCode op) {
  switch (op) {
    case tok::kLT:
      return "<";
    case tok::kLE:
      return "<=";
    case tok::kGT:
      return ">";
    case tok::kGE:
      return ">=";
    case tok::kEQ:
      return "=";
    default:
      return "<>";  // "#" lists as "<>"
  }
}

// The relation "selector op item" from a three-way comparison.
bool Holds(TokenCode op, int order) {
  switch (op) {
    case tok::kLT:
      return order < 0;
    case tok::kLE:
      return order <= 0;
    case tok::kGT:
      return order > 0;
    case tok::kGE:
      return order >= 0;
    case tok::kEQ:
      return order == 0;
    default:
      return order != 0;
  }
}

// Values and ranges read their bounds through operand forms (operands.h):
// CASE lists are mostly literals, read in place.
template <typename V>
class CaseNumericEQ final : public NumericCase {
 public:
  explicit CaseNumericEQ(NumericExpPtr value)
      : value_(std::move(value)), v_(LookThrough(value_.get())) {}
  size_t Size() const override { return sizeof *this + value_->Size(); }
  void List(std::string& out) const override { value_->List(out); }
  bool Matches(float selector) override { return selector == v_.Get(); }
  bool Constant(float* low, float* high) const override {
    if constexpr (std::is_same_v<V, ConstOperand>) {
      *low = *high = v_.Get();
      return true;
    } else {
      return NumericCase::Constant(low, high);
    }
  }

 private:
  NumericExpPtr value_;
  V v_;
};

class CaseNumericRelational final : public NumericCase {
 public:
  CaseNumericRelational(TokenCode op, NumericExpPtr value) : op_(op), value_(std::move(value)) {}
  size_t Size() const override { return sizeof *this + value_->Size(); }
  void List(std::string& out) const override {
    out += RelationText(op_);
    value_->List(out);
  }
  bool Matches(float selector) override {
    float value = value_->Evaluate();
    switch (op_) {
      case tok::kLT:
        return selector < value;
      case tok::kLE:
        return selector <= value;
      case tok::kGT:
        return selector > value;
      case tok::kGE:
        return selector >= value;
      case tok::kEQ:
        return selector == value;
      default:
        return selector != value;
    }
  }

 private:
  TokenCode op_;
  NumericExpPtr value_;
};

template <typename L, typename H>
class CaseNumericRange final : public NumericCase {
 public:
  CaseNumericRange(NumericExpPtr low, NumericExpPtr high)
      : low_(std::move(low)),
        high_(std::move(high)),
        l_(LookThrough(low_.get())),
        h_(LookThrough(high_.get())) {}
  size_t Size() const override { return sizeof *this + low_->Size() + high_->Size(); }
  void List(std::string& out) const override {
    low_->List(out);
    out += " TO ";
    high_->List(out);
  }
  bool Matches(float selector) override {
    float low = l_.Get();
    float high = h_.Get();
    return low <= selector && selector <= high;
  }
  bool Constant(float* low, float* high) const override {
    if constexpr (std::is_same_v<L, ConstOperand> && std::is_same_v<H, ConstOperand>) {
      *low = l_.Get();
      *high = h_.Get();
      return true;
    } else {
      return NumericCase::Constant(low, high);
    }
  }

 private:
  NumericExpPtr low_, high_;
  L l_;
  H h_;
};

class CaseStringEQ final : public StringCase {
 public:
  explicit CaseStringEQ(StringExpPtr value) : value_(std::move(value)) {}
  size_t Size() const override { return sizeof *this + value_->Size(); }
  void List(std::string& out) const override { value_->List(out); }
  bool Matches(std::string_view selector) override {
    return CompareStrings(selector, value_->Evaluate(work_)) == 0;
  }

 private:
  StringExpPtr value_;
  StringValue work_;
};

class CaseStringRelational final : public StringCase {
 public:
  CaseStringRelational(TokenCode op, StringExpPtr value) : op_(op), value_(std::move(value)) {}
  size_t Size() const override { return sizeof *this + value_->Size(); }
  void List(std::string& out) const override {
    out += RelationText(op_);
    value_->List(out);
  }
  bool Matches(std::string_view selector) override {
    return Holds(op_, CompareStrings(selector, value_->Evaluate(work_)));
  }

 private:
  TokenCode op_;
  StringExpPtr value_;
  StringValue work_;
};

class CaseStringRange final : public StringCase {
 public:
  CaseStringRange(StringExpPtr low, StringExpPtr high)
      : low_(std::move(low)), high_(std::move(high)) {}
  size_t Size() const override { return sizeof *this + low_->Size() + high_->Size(); }
  void List(std::string& out) const override {
    low_->List(out);
    out += " TO ";
    high_->List(out);
  }
  bool Matches(std::string_view selector) override {
    if (CompareStrings(selector, low_->Evaluate(lowWork_)) < 0) return false;
    return CompareStrings(selector, high_->Evaluate(highWork_)) <= 0;
  }

 private:
  StringExpPtr low_, high_;
  StringValue lowWork_, highWork_;
};

// A relation token at the start of an item, or 0.
TokenCode AcceptRelation(ExprContext& p) {
  ParseAttempt attempt(p);
  TokenCode op = p.GetToken();
  if (tok::Category(op) == tok::kRelation) return op;
  attempt.Rewind();
  return 0;
}

NumericCasePtr ParseNumericCase(ExprContext& p) {
  TokenCode op = AcceptRelation(p);
  NumericExpPtr value = ParseNumericExp(p);
  if (!value) return nullptr;
  if (op) return std::make_unique<CaseNumericRelational>(op, std::move(value));
  if (!p.Accept(tok::kTo)) {
    return WithOperand(value.get(), [&](auto v) -> NumericCasePtr {
      return std::make_unique<CaseNumericEQ<decltype(v)>>(std::move(value));
    });
  }
  NumericExpPtr high = ParseNumericExp(p);
  if (!high) return nullptr;
  return WithOperand(value.get(), [&](auto l) {
    return WithOperand(high.get(), [&](auto h) -> NumericCasePtr {
      using Range = CaseNumericRange<decltype(l), decltype(h)>;
      return std::make_unique<Range>(std::move(value), std::move(high));
    });
  });
}

StringCasePtr ParseStringCase(ExprContext& p) {
  TokenCode op = AcceptRelation(p);
  StringExpPtr value = ParseStringExp(p);
  if (!value) return nullptr;
  if (op) return std::make_unique<CaseStringRelational>(op, std::move(value));
  if (!p.Accept(tok::kTo)) return std::make_unique<CaseStringEQ>(std::move(value));
  StringExpPtr high = ParseStringExp(p);
  if (!high) return nullptr;
  return std::make_unique<CaseStringRange>(std::move(value), std::move(high));
}

template <typename Item, typename ParseItem>
std::vector<std::unique_ptr<Item>> ParseItems(ExprContext& p, ParseItem parse, ErrorCode missing) {
  ParseAttempt attempt(p);
  std::vector<std::unique_ptr<Item>> items;
  do {
    std::unique_ptr<Item> item = parse(p);
    if (!item) {
      attempt.Fail(missing);
      items.clear();
      return items;
    }
    items.push_back(std::move(item));
  } while (p.Accept(tok::kComma));
  return items;
}

}  // namespace

bool StartsStringCase(ExprContext& p) {
  ParseAttempt attempt(p);
  AcceptRelation(p);
  TokenCode code = p.GetToken();
  attempt.Rewind();
  switch (tok::Category(code)) {
    case tok::kStrVar:
    case tok::kStrArray:
    case tok::kStrFunc:
    case tok::kStrUserFn:
      return code >= tok::kFirstCoded;
    default:
      return code == tok::kString;
  }
}

std::vector<NumericCasePtr> ParseNumericCases(ExprContext& p) {
  return ParseItems<NumericCase>(p, ParseNumericCase, err::kBadNumericExp);
}

std::vector<StringCasePtr> ParseStringCases(ExprContext& p) {
  return ParseItems<StringCase>(p, ParseStringCase, err::kBadStringExp);
}
