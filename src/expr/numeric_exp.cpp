#include "expr/numeric_exp.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <type_traits>

#include "base/convert.h"
#include "base/dialect.h"
#include "expr/expr_context.h"
#include "expr/operands.h"
#include "expr/operators.h"
#include "lex/parse_attempt.h"

void Appendf(std::string& out, const char* format, ...) {
  char buf[260];
  va_list args;
  va_start(args, format);
  int n = std::vsnprintf(buf, sizeof buf, format, args);
  va_end(args);
  if (n > 0) out.append(buf, std::min<size_t>(static_cast<size_t>(n), sizeof buf - 1));
}

namespace {

// The value a constant lists with: whole numbers in the range of hex constants
// exactly, others as the shortest decimal that reads back as the same float, so
// that a listed constant shows what was typed (0.1, 1E+20), not binary noise.
double ListedValue(float value) {
  if (!std::isfinite(value)) return value;
  if (std::fabs(value) <= 4294967296.0f && value == std::trunc(value)) return value;
  char buf[32];
  double decimal = value;
  for (int digits = 1; digits <= 9; ++digits) {
    std::snprintf(buf, sizeof buf, "%.*e", digits - 1, double{value});
    decimal = std::strtod(buf, nullptr);
    if (static_cast<float>(decimal) == value) break;
  }
  return decimal;
}

class NumericLit final : public NumericExp {
 public:
  explicit NumericLit(float value) : value_(value) {}
  int Kind() const override { return kLiteral; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { Appendf(out, "%.15lG", ListedValue(value_)); }
  float Evaluate() override { return value_; }
  float value() const { return value_; }

 private:
  float value_;
};

// Keeps the user's parentheses, so a listing reads as typed.
class Primary final : public NumericExp {
 public:
  explicit Primary(NumericExpPtr inner) : inner_(std::move(inner)) {}
  int Kind() const override { return kParens; }
  size_t Size() const override { return sizeof *this + inner_->Size(); }
  void List(std::string& out) const override {
    out += '(';
    inner_->List(out);
    out += ')';
  }
  float Evaluate() override { return inner_->Evaluate(); }
  bool Test() override { return inner_->Test(); }
  NumericExp* Inner() const { return inner_.get(); }

 private:
  NumericExpPtr inner_;
};

class Not final : public NumericExp {
 public:
  explicit Not(NumericExpPtr operand) : operand_(std::move(operand)) {}
  int Kind() const override { return static_cast<int>(tok::kNot); }
  size_t Size() const override { return sizeof *this + operand_->Size(); }
  void List(std::string& out) const override {
    out += " NOT ";
    operand_->List(out);
  }
  float Evaluate() override { return Truth(operand_->Evaluate() == 0.0f); }
  bool Test() override { return !operand_->Test(); }

 private:
  NumericExpPtr operand_;
};

class Negate final : public NumericExp {
 public:
  explicit Negate(NumericExpPtr operand) : operand_(std::move(operand)) {}
  int Kind() const override { return kNegate; }
  size_t Size() const override { return sizeof *this + operand_->Size(); }
  void List(std::string& out) const override {
    out += '-';
    operand_->List(out);
  }
  float Evaluate() override { return -operand_->Evaluate(); }

 private:
  NumericExpPtr operand_;
};

// A binary operator node over two subtrees, read through operand forms L and
// R (operands.h); the common operators get a class for each combination.
template <typename Op, typename L = TreeOperand, typename R = TreeOperand>
class Binary final : public NumericExp, public TwoOperands {
 public:
  Binary(NumericExpPtr left, NumericExpPtr right)
      : left_(std::move(left)),
        right_(std::move(right)),
        l_(LookThrough(left_.get())),
        r_(LookThrough(right_.get())) {}
  int Kind() const override { return static_cast<int>(Op::kKind); }
  size_t Size() const override { return sizeof *this + left_->Size() + right_->Size(); }
  void List(std::string& out) const override {
    left_->List(out);
    out += Op::kText;
    right_->List(out);
  }
  float Evaluate() override {
    if constexpr (Op::kRightFirst) {
      float right = r_.Get();
      return Op::Apply(l_.Get(), right);
    } else {
      float left = l_.Get();
      return Op::Apply(left, r_.Get());
    }
  }
  bool Test() override {
    if constexpr (requires { Op::Holds(0.0f, 0.0f); }) {
      static_assert(!Op::kRightFirst);
      float left = l_.Get();
      return Op::Holds(left, r_.Get());
    } else {
      return Evaluate() != 0.0f;
    }
  }
  void Operands(NumericExp** left, NumericExp** right, float*) const override {
    *left = left_.get();
    *right = right_.get();
  }

 private:
  NumericExpPtr left_;
  NumericExpPtr right_;
  L l_;
  R r_;
};

// The same operator with a literal right operand folded in at parse time.
template <typename Op, typename L = TreeOperand>
class BinaryEC final : public NumericExp, public TwoOperands {
 public:
  BinaryEC(NumericExpPtr left, float constant)
      : left_(std::move(left)), l_(LookThrough(left_.get())), constant_(constant) {}
  int Kind() const override { return static_cast<int>(Op::kKind); }
  size_t Size() const override { return sizeof *this + left_->Size(); }
  void List(std::string& out) const override {
    left_->List(out);
    out += Op::kText;
    Appendf(out, "%.15lg", ListedValue(constant_));
  }
  float Evaluate() override { return Op::Apply(l_.Get(), constant_); }
  bool Test() override {
    if constexpr (requires { Op::Holds(0.0f, 0.0f); })
      return Op::Holds(l_.Get(), constant_);
    else
      return Evaluate() != 0.0f;
  }
  void Operands(NumericExp** left, NumericExp** right, float* constant) const override {
    *left = left_.get();
    *right = nullptr;
    *constant = constant_;
  }

 private:
  NumericExpPtr left_;
  L l_;
  float constant_;
};

// The node of a binary operator, with operand forms fitted to its operands.
template <typename Op>
NumericExpPtr MakeBinary(NumericExpPtr left, NumericExpPtr right) {
  if constexpr (!Op::kHot) {
    return std::make_unique<Binary<Op>>(std::move(left), std::move(right));
  } else if constexpr (std::is_same_v<Op, AddOp> || std::is_same_v<Op, SubtractOp>) {
    return WithSumOperand(left.get(), [&](auto l) {
      return WithSumOperand(right.get(), [&](auto r) -> NumericExpPtr {
        using Node = Binary<Op, decltype(l), decltype(r)>;
        return std::make_unique<Node>(std::move(left), std::move(right));
      });
    });
  } else {
    return WithOperand(left.get(), [&](auto l) {
      return WithOperand(right.get(), [&](auto r) -> NumericExpPtr {
        using Node = Binary<Op, decltype(l), decltype(r)>;
        return std::make_unique<Node>(std::move(left), std::move(right));
      });
    });
  }
}

using Factor = Binary<FactorOp>;
using Div = Binary<DivOp>;
using Min = Binary<MinOp>;
using Max = Binary<MaxOp>;
using ExclusiveXOR = Binary<XorOp>;
using ExclusiveEQV = Binary<EqvOp>;

// The short-circuit operators.
class Conjunction final : public NumericExp {
 public:
  Conjunction(NumericExpPtr left, NumericExpPtr right)
      : left_(std::move(left)), right_(std::move(right)) {}
  int Kind() const override { return static_cast<int>(tok::kAnd); }
  size_t Size() const override { return sizeof *this + left_->Size() + right_->Size(); }
  void List(std::string& out) const override {
    left_->List(out);
    out += " AND ";
    right_->List(out);
  }
  float Evaluate() override {
    if (left_->Evaluate() == 0.0f) return 0.0f;
    return Truth(right_->Evaluate() != 0.0f);
  }
  bool Test() override { return left_->Test() && right_->Test(); }

 private:
  NumericExpPtr left_, right_;
};

class Disjunction final : public NumericExp {
 public:
  Disjunction(NumericExpPtr left, NumericExpPtr right)
      : left_(std::move(left)), right_(std::move(right)) {}
  int Kind() const override { return static_cast<int>(tok::kOr); }
  size_t Size() const override { return sizeof *this + left_->Size() + right_->Size(); }
  void List(std::string& out) const override {
    left_->List(out);
    out += " OR ";
    right_->List(out);
  }
  float Evaluate() override {
    if (left_->Evaluate() != 0.0f) return 1.0f;
    return Truth(right_->Evaluate() != 0.0f);
  }
  bool Test() override { return left_->Test() || right_->Test(); }

 private:
  NumericExpPtr left_, right_;
};

// Listed "IMP " without a leading blank, so A IMP B reads AIMP B.
class ExclusiveIMP final : public NumericExp {
 public:
  ExclusiveIMP(NumericExpPtr left, NumericExpPtr right)
      : left_(std::move(left)), right_(std::move(right)) {}
  int Kind() const override { return static_cast<int>(tok::kImp); }
  size_t Size() const override { return sizeof *this + left_->Size() + right_->Size(); }
  void List(std::string& out) const override {
    left_->List(out);
    out += "IMP ";
    right_->List(out);
  }
  float Evaluate() override {
    if (left_->Evaluate() == 0.0f) return 1.0f;
    return Truth(right_->Evaluate() != 0.0f);
  }

 private:
  NumericExpPtr left_, right_;
};

// --- Parser.

// Literal right operands fold into the EC form of the operator.
template <typename Op>
NumericExpPtr Fold(NumericExpPtr left, NumericExpPtr right) {
  if (right->Kind() == NumericExp::kLiteral) {
    float constant = static_cast<NumericLit&>(*right).value();
    return WithLeftOperand(left.get(), [&](auto l) -> NumericExpPtr {
      return std::make_unique<BinaryEC<Op, decltype(l)>>(std::move(left), constant);
    });
  }
  return MakeBinary<Op>(std::move(left), std::move(right));
}

NumericExpPtr ParseSubterm(ExprContext& p);
NumericExpPtr ParseRelation(ExprContext& p);
NumericExpPtr AndTail(ExprContext& p, NumericExpPtr left);
NumericExpPtr ExclusiveTail(ExprContext& p, NumericExpPtr left);
NumericExpPtr OrTail(ExprContext& p, NumericExpPtr left);

NumericExpPtr FactorTail(ExprContext& p, NumericExpPtr left) {
  for (;;) {
    ParseAttempt attempt(p);
    TokenCode op = p.GetToken();
    if (op != tok::kCaret && op != tok::kPower) {
      p.BackUp();
      SetParseError(0);
      return left;
    }
    NumericExpPtr right = ParseNumericPrimary(p);
    if (!right) return attempt.Fail();
    left = Fold<FactorOp>(std::move(left), std::move(right));
  }
}

NumericExpPtr TermTail(ExprContext& p, NumericExpPtr left) {
  for (;;) {
    ParseAttempt attempt(p);
    TokenCode op = p.GetToken();
    if (op != tok::kStar && op != tok::kSlash && op != tok::kMod && op != tok::kDiv) {
      p.BackUp();
      SetParseError(0);
      return left;
    }
    NumericExpPtr right = ParseSubterm(p);
    if (!right) return attempt.Fail();
    switch (op) {
      case tok::kStar:
        left = Fold<MultiplyOp>(std::move(left), std::move(right));
        break;
      case tok::kSlash:
        left = Fold<DivideOp>(std::move(left), std::move(right));
        break;
      case tok::kMod:
        left = MakeBinary<ModOp>(std::move(left), std::move(right));
        break;
      default:
        left = std::make_unique<Div>(std::move(left), std::move(right));
        break;
    }
  }
}

NumericExpPtr SumTail(ExprContext& p, NumericExpPtr left) {
  for (;;) {
    ParseAttempt attempt(p);
    TokenCode op = p.GetToken();
    if (op != tok::kPlus && op != tok::kMinus) {
      p.BackUp();
      return left;
    }
    NumericExpPtr right = ParseSubterm(p);
    if (right) right = TermTail(p, std::move(right));
    if (!right) return attempt.Fail();
    left = op == tok::kPlus ? Fold<AddOp>(std::move(left), std::move(right))
                            : Fold<SubtractOp>(std::move(left), std::move(right));
  }
}

// Subterm, term tail and sum tail: the operand of MIN, MAX and relations.
NumericExpPtr ParseSumLevel(ExprContext& p) {
  NumericExpPtr e = ParseSubterm(p);
  if (e) e = TermTail(p, std::move(e));
  if (e) e = SumTail(p, std::move(e));
  return e;
}

NumericExpPtr MinMaxTail(ExprContext& p, NumericExpPtr left) {
  for (;;) {
    ParseAttempt attempt(p);
    TokenCode op = p.GetToken();
    if (op != tok::kMin && op != tok::kMax) {
      p.BackUp();
      return left;
    }
    NumericExpPtr right = ParseSumLevel(p);
    if (!right) return attempt.Fail();
    if (op == tok::kMin)
      left = std::make_unique<Min>(std::move(left), std::move(right));
    else
      left = std::make_unique<Max>(std::move(left), std::move(right));
  }
}

// One relational operator and its right operand, folded onto left; left as it
// is when no relation follows.
NumericExpPtr OneRelation(ExprContext& p, NumericExpPtr left, bool* found) {
  ParseAttempt attempt(p);
  TokenCode op = p.GetToken();
  *found = tok::Category(op) == tok::kRelation;
  if (!*found) {
    p.BackUp();
    return left;
  }
  NumericExpPtr right = ParseSumLevel(p);
  if (right) right = MinMaxTail(p, std::move(right));
  if (!right) return attempt.Fail();
  switch (op) {
    case tok::kEQ:
      return Fold<EqOp>(std::move(left), std::move(right));
    case tok::kNE:
    case tok::kHash:
      return Fold<NeOp>(std::move(left), std::move(right));
    case tok::kLT:
      return Fold<LtOp>(std::move(left), std::move(right));
    case tok::kLE:
      return Fold<LeOp>(std::move(left), std::move(right));
    case tok::kGT:
      return Fold<GtOp>(std::move(left), std::move(right));
    case tok::kGE:
      return Fold<GeOp>(std::move(left), std::move(right));
    default:
      return attempt.Replace(err::kBadOperator);
  }
}

// Under the classic switch relations chain left to right, each giving 1 or 0:
// R1=C1=0 is (R1=C1)=0.
NumericExpPtr ChainedRelations(ExprContext& p, NumericExpPtr left) {
  for (bool found = g_classic; found && left;) left = OneRelation(p, std::move(left), &found);
  return left;
}

NumericExpPtr RelationTail(ExprContext& p, NumericExpPtr left) {
  bool found;
  left = OneRelation(p, std::move(left), &found);
  if (!found || !left) return left;
  left = ChainedRelations(p, std::move(left));
  // Otherwise one comparison only: a second relational operator is left for the statement.
  return left ? OrTail(p, std::move(left)) : nullptr;
}

NumericExpPtr ParseRelation(ExprContext& p) {
  ParseAttempt attempt(p);
  NumericExpPtr e = ParseSumLevel(p);
  if (e) e = MinMaxTail(p, std::move(e));
  if (e) e = RelationTail(p, std::move(e));
  if (e) return e;
  ErrorCode numericError = g_err.parse;
  attempt.Rewind();
  if (StringExpPtr left = ParseStringExp(p)) {
    if (NumericExpPtr relation = ParseStringRelationTail(p, std::move(left)))
      if ((relation = ChainedRelations(p, std::move(relation)))) return relation;
  }
  return attempt.Fail(numericError);
}

NumericExpPtr AndTail(ExprContext& p, NumericExpPtr left) {
  for (;;) {
    ParseAttempt attempt(p);
    if (!p.Accept(tok::kAnd)) return left;
    NumericExpPtr right = ParseRelation(p);
    if (!right) return attempt.Fail();
    left = std::make_unique<Conjunction>(std::move(left), std::move(right));
  }
}

NumericExpPtr ExclusiveTail(ExprContext& p, NumericExpPtr left) {
  for (;;) {
    ParseAttempt attempt(p);
    TokenCode op = p.GetToken();
    if (op != tok::kXor && op != tok::kEqv && op != tok::kImp) {
      p.BackUp();
      return left;
    }
    NumericExpPtr right = ParseRelation(p);
    if (right) right = AndTail(p, std::move(right));
    if (!right) return attempt.Fail();
    if (op == tok::kXor)
      left = std::make_unique<ExclusiveXOR>(std::move(left), std::move(right));
    else if (op == tok::kEqv)
      left = std::make_unique<ExclusiveEQV>(std::move(left), std::move(right));
    else
      left = std::make_unique<ExclusiveIMP>(std::move(left), std::move(right));
  }
}

NumericExpPtr OrTail(ExprContext& p, NumericExpPtr left) {
  for (;;) {
    ParseAttempt attempt(p);
    if (!p.Accept(tok::kOr)) return left;
    NumericExpPtr right = ParseRelation(p);
    if (right) right = AndTail(p, std::move(right));
    if (right) right = ExclusiveTail(p, std::move(right));
    if (!right) return attempt.Fail();
    left = std::make_unique<Disjunction>(std::move(left), std::move(right));
  }
}

NumericExpPtr ParseSubterm(ExprContext& p) {
  ParseAttempt attempt(p);
  TokenCode op = p.GetToken();
  if (op != tok::kNot && op != tok::kMinus && op != tok::kPlus) p.BackUp();
  NumericExpPtr e = ParseNumericPrimary(p);
  if (e) e = FactorTail(p, std::move(e));
  if (!e) return attempt.Fail();
  if (op == tok::kNot) return std::make_unique<Not>(std::move(e));
  if (op == tok::kMinus) return std::make_unique<Negate>(std::move(e));
  return e;
}

// Parentheses, subscripts and arguments all nest through ParseNumericExp;
// past this depth a line is refused rather than risking the native stack.
constexpr int kMaxNesting = 400;
int g_nesting = 0;  // active ParseNumericExp calls beyond the outermost

}  // namespace

NumericExpPtr MakeNumericLit(float value) { return std::make_unique<NumericLit>(value); }

bool LiteralValue(const NumericExp* node, float* value) {
  if (node->Kind() != NumericExp::kLiteral) return false;
  *value = static_cast<const NumericLit*>(node)->value();
  return true;
}

bool ArithmeticOperands(NumericExp* node, NumericExp** left, NumericExp** right, float* constant) {
  switch (node->Kind()) {
    case tok::kPlus:
    case tok::kMinus:
    case tok::kStar:
    case tok::kSlash:
      break;
    default:
      return false;
  }
  auto* parts = dynamic_cast<const TwoOperands*>(node);
  if (!parts) return false;
  parts->Operands(left, right, constant);
  return true;
}

NumericExp* LookThrough(NumericExp* node) {
  while (node->Kind() == NumericExp::kParens) node = static_cast<Primary*>(node)->Inner();
  return node;
}

NumericExp* ProductFactor(NumericExp* node, bool right) {
  NumericExp *l = nullptr, *r = nullptr;
  float constant;
  ArithmeticOperands(node, &l, &r, &constant);
  return LookThrough(right ? r : l);
}

OperandForm FormOf(NumericExp* node) {
  if (node->Kind() == NumericExp::kLiteral) return OperandForm::kConst;
  if (dynamic_cast<NumericSimpleVar*>(node)) return OperandForm::kVar;
  NumericExp *l, *r;
  float constant;
  if (node->Kind() == tok::kStar && ArithmeticOperands(node, &l, &r, &constant) && r &&
      dynamic_cast<NumericSimpleVar*>(LookThrough(l)) &&
      dynamic_cast<NumericSimpleVar*>(LookThrough(r)))
    return OperandForm::kProduct;
  return OperandForm::kTree;
}

NumericExpPtr ParseNumericPrimary(ExprContext& p) {
  float value;
  if (p.AcceptConstant(&value)) return std::make_unique<NumericLit>(value);
  switch (tok::Category(p.Peek())) {
    case tok::kNumFunc:
      return ParseNumericFunction(p);
    case tok::kNumUserFn:
      return ParseNumericUserCall(p);
    case tok::kNumVar:
    case tok::kNumArray:
      return ParseNumericVar(p);
    default:
      break;
  }
  ParseAttempt attempt(p);
  if (!p.Accept(tok::kLParen)) return nullptr;
  NumericExpPtr inner = ParseNumericExp(p);
  if (!inner) return attempt.Fail();
  if (!p.Accept(tok::kRParen)) return attempt.Replace(err::kMissingRParen);
  return std::make_unique<Primary>(std::move(inner));
}

// Both entries give back every token they read when they fail, so that the
// caller can try another reading from the same place.
NumericExpPtr ParseNumericSum(ExprContext& p) {
  ParseAttempt attempt(p);
  NumericExpPtr e = ParseSumLevel(p);
  if (e) e = MinMaxTail(p, std::move(e));
  if (!e) return attempt.Fail();
  return e;
}

NumericExpPtr ParseNumericExp(ExprContext& p) {
  if (g_nesting > kMaxNesting || !p.SpendExpression()) {
    SetParseError(err::kBadNumericExp);
    return nullptr;
  }
  ++g_nesting;
  ParseAttempt attempt(p);
  NumericExpPtr e = ParseRelation(p);
  if (e) e = AndTail(p, std::move(e));
  if (e) e = ExclusiveTail(p, std::move(e));
  if (e) e = OrTail(p, std::move(e));
  if (!e) attempt.Rewind();
  --g_nesting;
  return e;
}

NumericExpPtr MakeNumericOperator(TokenCode op, NumericExpPtr left, NumericExpPtr right) {
  if (!left || !right) return nullptr;
  switch (op) {
    case tok::kCaret:
    case tok::kPower:
      return std::make_unique<Factor>(std::move(left), std::move(right));
    case tok::kStar:
      return MakeBinary<MultiplyOp>(std::move(left), std::move(right));
    case tok::kSlash:
      return MakeBinary<DivideOp>(std::move(left), std::move(right));
    case tok::kMod:
      return MakeBinary<ModOp>(std::move(left), std::move(right));
    case tok::kDiv:
      return std::make_unique<Div>(std::move(left), std::move(right));
    case tok::kPlus:
      return MakeBinary<AddOp>(std::move(left), std::move(right));
    case tok::kMinus:
      return MakeBinary<SubtractOp>(std::move(left), std::move(right));
    case tok::kMin:
      return std::make_unique<Min>(std::move(left), std::move(right));
    case tok::kMax:
      return std::make_unique<Max>(std::move(left), std::move(right));
    case tok::kEQ:
      return MakeBinary<EqOp>(std::move(left), std::move(right));
    case tok::kNE:
    case tok::kHash:
      return MakeBinary<NeOp>(std::move(left), std::move(right));
    case tok::kLT:
      return MakeBinary<LtOp>(std::move(left), std::move(right));
    case tok::kLE:
      return MakeBinary<LeOp>(std::move(left), std::move(right));
    case tok::kGT:
      return MakeBinary<GtOp>(std::move(left), std::move(right));
    case tok::kGE:
      return MakeBinary<GeOp>(std::move(left), std::move(right));
    case tok::kAnd:
      return std::make_unique<Conjunction>(std::move(left), std::move(right));
    case tok::kOr:
      return std::make_unique<Disjunction>(std::move(left), std::move(right));
    case tok::kXor:
      return std::make_unique<ExclusiveXOR>(std::move(left), std::move(right));
    case tok::kEqv:
      return std::make_unique<ExclusiveEQV>(std::move(left), std::move(right));
    case tok::kImp:
      return std::make_unique<ExclusiveIMP>(std::move(left), std::move(right));
    default:
      return nullptr;
  }
}
