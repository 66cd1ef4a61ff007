// LET, written or implied: one or more assignments joined by ";", each storing
// one value into a list of targets.
#include <vector>

#include "expr/operands.h"
#include "expr/operators.h"
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class LetList {
 public:
  virtual ~LetList() = default;
  virtual void List(std::string& out) const = 0;
  virtual size_t Size() const = 0;
  virtual void Execute() = 0;
};
using LetListPtr = std::unique_ptr<LetList>;

// The targets of one assignment with the separator written before each one
// after the first ("," or "="); the listing gives them back as written.
template <typename Var>
class TargetList final {
 public:
  void Add(char separator, std::unique_ptr<Var> var) {
    separators_ += separator;
    vars_.push_back(std::move(var));
  }
  void DropLast() {
    separators_.pop_back();
    vars_.pop_back();
  }
  bool Empty() const { return vars_.empty(); }
  char LastSeparator() const { return separators_.back(); }
  void List(std::string& out) const {
    for (size_t i = 0; i < vars_.size(); ++i) {
      if (i > 0) out += separators_[i];
      vars_[i]->List(out);
    }
  }
  size_t Size() const {
    size_t size = sizeof *this + separators_.capacity();
    for (const auto& var : vars_) size += var->Size();
    return size;
  }
  template <typename Value>
  void Assign(Value value) {
    for (const auto& var : vars_) var->Assign(value);
  }
  // The target of a one-target list, given up; null when there are more.
  std::unique_ptr<Var> TakeOnly() { return vars_.size() == 1 ? std::move(vars_.front()) : nullptr; }

 private:
  std::vector<std::unique_ptr<Var>> vars_;
  std::string separators_;  // separators_[0] is unused
};

class LetGroup final : public LetList {
 public:
  LetGroup(LetListPtr first, LetListPtr rest) : first_(std::move(first)), rest_(std::move(rest)) {}
  void List(std::string& out) const override {
    first_->List(out);
    out += "; ";
    rest_->List(out);
  }
  size_t Size() const override { return sizeof *this + first_->Size() + rest_->Size(); }
  void Execute() override {
    first_->Execute();
    rest_->Execute();
  }

 private:
  LetListPtr first_, rest_;
};

class LetNumeric final : public LetList {
 public:
  LetNumeric(TargetList<NumericVar> targets, NumericExpPtr exp)
      : targets_(std::move(targets)), exp_(std::move(exp)) {}
  void List(std::string& out) const override {
    targets_.List(out);
    out += '=';
    exp_->List(out);
  }
  size_t Size() const override { return sizeof *this + targets_.Size() + exp_->Size(); }
  void Execute() override { targets_.Assign(exp_->Evaluate()); }
  // Gives up the target and the expression when there is one target only.
  bool TakeOnly(std::unique_ptr<NumericVar>* target, NumericExpPtr* exp) {
    if (!(*target = targets_.TakeOnly())) return false;
    *exp = std::move(exp_);
    return true;
  }

 private:
  TargetList<NumericVar> targets_;
  NumericExpPtr exp_;
};

class LetString final : public LetList {
 public:
  LetString(TargetList<StringVar> targets, StringExpPtr exp)
      : targets_(std::move(targets)), exp_(std::move(exp)) {}
  void List(std::string& out) const override {
    targets_.List(out);
    out += '=';
    exp_->List(out);
  }
  size_t Size() const override {
    return sizeof *this + targets_.Size() + exp_->Size() + work_.Capacity();
  }
  // The value may be a view of a target (A$[2]=A$), so it is copied into the
  // statement's own buffer before the first store.
  void Execute() override {
    std::string_view value = exp_->Evaluate(work_);
    const char* own = work_.Data();
    if (value.data() < own || value.data() > own + work_.Capacity()) {
      work_.Clear();
      work_.Append(value);
      value = work_.View();
    }
    targets_.Assign(value);
  }

 private:
  TargetList<StringVar> targets_;
  StringExpPtr exp_;
  StringValue work_;
};

// Any assignment list; "LET " is listed when it was written.
class LetStmt final : public Statement {
 public:
  LetStmt(bool spelled, LetListPtr list) : list_(std::move(list)), spelled_(spelled) {}
  Statement* Execute() override {
    list_->Execute();
    return successor_;
  }
  TokenCode Code() const override { return tok::kLet; }
  size_t Size() const override { return sizeof *this + list_->Size(); }
  void List(std::string& out) const override {
    if (spelled_) out += "LET ";
    list_->List(out);
  }

 private:
  LetListPtr list_;
  bool spelled_;
};

// "[LET ]V=E" with one numeric target: what the one-target forms below share.
template <typename Target>
class LetOneNumericStmt : public Statement {
 public:
  TokenCode Code() const override { return tok::kLet; }
  void List(std::string& out) const override {
    if (spelled_) out += "LET ";
    target_->List(out);
    out += '=';
    exp_->List(out);
  }

 protected:
  LetOneNumericStmt(bool spelled, std::unique_ptr<Target> target, NumericExpPtr exp)
      : target_(std::move(target)), exp_(std::move(exp)), spelled_(spelled) {}
  // The parts' sizes; each form adds its own sizeof.
  size_t PartsSize() const { return target_->Size() + exp_->Size(); }

  std::unique_ptr<Target> target_;
  NumericExpPtr exp_;  // owns the nodes the operand forms read

 private:
  bool spelled_;
};

// The common case, one numeric target, stored without the list's calls and
// loop: Target is NumericSimpleVar (stored inline) or any NumericVar, Value an
// operand form of the expression (operands.h).
template <typename Target, typename Value>
class LetNumericStmt final : public LetOneNumericStmt<Target> {
 public:
  LetNumericStmt(bool spelled, std::unique_ptr<Target> target, NumericExpPtr exp)
      : LetOneNumericStmt<Target>(spelled, std::move(target), std::move(exp)),
        value_(LookThrough(this->exp_.get())) {}
  size_t Size() const override { return sizeof *this + this->PartsSize(); }
  Statement* Execute() override {
    this->target_->Assign(value_.Get());
    return this->successor_;
  }

 private:
  Value value_;
};

// "V = V op E" for + - * /, the commonest counting and summing line: the
// operation is done here, a node's virtual call fewer. V is read through the
// expression's own node, so the order and the undefined check are the operator's.
template <typename Op, typename Right>
class LetUpdateStmt final : public LetOneNumericStmt<NumericSimpleVar> {
 public:
  LetUpdateStmt(bool spelled, std::unique_ptr<NumericSimpleVar> target, NumericExpPtr exp,
                NumericExp* var, Right right)
      : LetOneNumericStmt(spelled, std::move(target), std::move(exp)), var_(var), right_(right) {}
  size_t Size() const override { return sizeof *this + PartsSize(); }
  Statement* Execute() override {
    if constexpr (Op::kRightFirst) {
      float right = right_.Get();
      target_->Assign(Op::Apply(var_.Get(), right));
    } else {
      float left = var_.Get();
      target_->Assign(Op::Apply(left, right_.Get()));
    }
    return successor_;
  }

 private:
  VarOperand var_;
  Right right_;
};

template <typename Op>
StatementPtr MakeLetUpdate(bool spelled, std::unique_ptr<NumericSimpleVar> target,
                           NumericExpPtr exp, NumericExp* var, NumericExp* right, float constant) {
  if (!right) {
    return std::make_unique<LetUpdateStmt<Op, ConstOperand>>(
        spelled, std::move(target), std::move(exp), var, ConstOperand(constant));
  }
  return WithSumOperand(right, [&](auto r) -> StatementPtr {
    using Stmt = LetUpdateStmt<Op, decltype(r)>;
    return std::make_unique<Stmt>(spelled, std::move(target), std::move(exp), var, r);
  });
}

// The update form when exp is "target op E" for + - * /; null otherwise, with
// target and exp left as they were.
StatementPtr MakeLetUpdate(bool spelled, std::unique_ptr<NumericSimpleVar>& target,
                           NumericExpPtr& exp) {
  NumericExp* node = LookThrough(exp.get());
  NumericExp *left, *right;
  float constant = 0.0f;
  if (!ArithmeticOperands(node, &left, &right, &constant)) return nullptr;
  left = LookThrough(left);
  auto* var = dynamic_cast<NumericSimpleVar*>(left);
  if (!var || var->Name() != target->Name()) return nullptr;
  switch (node->Kind()) {
    case tok::kPlus:
      return MakeLetUpdate<AddOp>(spelled, std::move(target), std::move(exp), var, right, constant);
    case tok::kMinus:
      return MakeLetUpdate<SubtractOp>(spelled, std::move(target), std::move(exp), var, right,
                                       constant);
    case tok::kStar:
      return MakeLetUpdate<MultiplyOp>(spelled, std::move(target), std::move(exp), var, right,
                                       constant);
    default:
      return MakeLetUpdate<DivideOp>(spelled, std::move(target), std::move(exp), var, right,
                                     constant);
  }
}

template <typename Target>
StatementPtr MakeLetNumeric(bool spelled, std::unique_ptr<Target> target, NumericExpPtr exp) {
  return WithSumOperand(exp.get(), [&](auto value) -> StatementPtr {
    using Stmt = LetNumericStmt<Target, decltype(value)>;
    return std::make_unique<Stmt>(spelled, std::move(target), std::move(exp));
  });
}

// The statement for a parsed list: the one-target form when it fits.
StatementPtr MakeLet(bool spelled, LetListPtr list) {
  std::unique_ptr<NumericVar> target;
  NumericExpPtr exp;
  auto* numeric = dynamic_cast<LetNumeric*>(list.get());
  if (!numeric || !numeric->TakeOnly(&target, &exp))
    return std::make_unique<LetStmt>(spelled, std::move(list));
  if (auto* simple = dynamic_cast<NumericSimpleVar*>(target.get())) {
    target.release();
    std::unique_ptr<NumericSimpleVar> owned(simple);
    if (StatementPtr update = MakeLetUpdate(spelled, owned, exp)) return update;
    return MakeLetNumeric(spelled, std::move(owned), std::move(exp));
  }
  return MakeLetNumeric(spelled, std::move(target), std::move(exp));
}

// Targets joined by "," or "=", then "=" and the expression. An "=" may also
// start the expression (A=B+1), so targets after an "=" are given back one
// at a time until the rest parses.
template <typename Var, typename ExpPtr, typename Item>
LetListPtr ParseItem(StmtContext& p, std::unique_ptr<Var> (*parseVar)(ExprContext&),
                     ExpPtr (*parseExp)(ExprContext&), ErrorCode missing) {
  ParseAttempt assignment(p);
  TargetList<Var> targets;
  std::vector<size_t> marks;  // position before the separator of each later target
  std::unique_ptr<Var> var = parseVar(p);
  if (!var) return nullptr;
  targets.Add(' ', std::move(var));
  for (;;) {
    size_t mark = p.Mark();
    TokenCode sep = p.GetToken();
    if (sep != tok::kComma && sep != tok::kEQ) {
      p.Restore(mark);
      break;
    }
    if (!(var = parseVar(p))) {
      p.Restore(mark);
      break;
    }
    targets.Add(sep == tok::kComma ? ',' : '=', std::move(var));
    marks.push_back(mark);
  }
  for (;;) {
    if (p.Accept(tok::kEQ))
      if (ExpPtr exp = parseExp(p))
        return std::make_unique<Item>(std::move(targets), std::move(exp));
    if (marks.empty() || targets.LastSeparator() != '=') break;
    SetParseError(0);
    p.Restore(marks.back());
    marks.pop_back();
    targets.DropLast();
  }
  return assignment.Replace(missing);
}

LetListPtr ParseAssignment(StmtContext& p) {
  LetListPtr item = ParseItem<NumericVar, NumericExpPtr, LetNumeric>(
      p, ParseNumericVar, ParseNumericExp, err::kBadNumericExp);
  if (!item && !g_err.parse)
    item = ParseItem<StringVar, StringExpPtr, LetString>(p, ParseStringVar, ParseStringExp,
                                                         err::kBadStringExp);
  if (!item || !p.Accept(tok::kSemicolon)) return item;
  LetListPtr rest = ParseAssignment(p);
  if (rest) return std::make_unique<LetGroup>(std::move(item), std::move(rest));
  // A trailing ";" is harmless; an item after it that fails fails the statement.
  return g_err.parse ? nullptr : std::move(item);
}

}  // namespace

StatementPtr ParseLet(StmtContext& p) {
  ParseAttempt attempt(p);
  LetListPtr list = ParseAssignment(p);
  if (!list) return attempt.Fail(err::kLetTargetMissing);
  return MakeLet(true, std::move(list));
}

StatementPtr ParseImpliedLet(StmtContext& p) {
  ParseAttempt attempt(p);
  LetListPtr list = ParseAssignment(p);
  if (!list) return attempt.Fail();
  return MakeLet(false, std::move(list));
}
