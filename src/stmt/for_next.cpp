// FOR and NEXT: counted loops, linked once and run without a loop stack.
#include "lex/parse_attempt.h"
#include "stmt/blocks.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class ForStmt;

// NEXT <var>: closes the FOR of the same variable.
class NextStmt final : public Statement {
 public:
  explicit NextStmt(std::unique_ptr<NumericSimpleVar> var) : var_(std::move(var)) {}
  Statement* Execute() override;
  TokenCode Code() const override { return tok::kNext; }
  size_t Size() const override { return sizeof *this + var_->Size(); }
  void List(std::string& out) const override {
    out += "NEXT ";
    var_->List(out);
  }
  void Dump(std::string& out) const override;
  int IndentClass() const override { return kCloses; }
  bool IsBlock() const override { return true; }
  ErrorCode Resolve(StmtContext&) override {
    for_ = nullptr;
    return 0;
  }
  ErrorCode Check(StmtContext&) override { return for_ ? 0 : err::kNextWithoutFor; }
  SearchAnswer Answer(Search search, Statement* asker) override;
  const VarToken* Variable() const { return var_->Name(); }
  void Bind(ForStmt* loop) { for_ = loop; }

 private:
  std::unique_ptr<NumericSimpleVar> var_;  // as written; the loop runs on the FOR's
  ForStmt* for_ = nullptr;
};

class ForStmt final : public BlockOpener {
 public:
  ForStmt(std::unique_ptr<NumericSimpleVar> var, NumericExpPtr initial, NumericExpPtr limit,
          NumericExpPtr step)
      : var_(std::move(var)),
        initial_(std::move(initial)),
        limit_(std::move(limit)),
        step_(std::move(step)) {}

  Statement* Execute() override {
    // Step, limit, initial value: each evaluated once, in this order.
    float step = step_ ? step_->Evaluate() : 1.0f;
    float limit = limit_->Evaluate();
    float initial = initial_->Evaluate();
    if (g_err.run) return successor_;
    var_->Assign(initial);
    step_value_ = step;
    limit_value_ = limit;
    active_ = InRange(initial);
    return active_ ? successor_ : next_->Successor();
  }
  TokenCode Code() const override { return tok::kFor; }
  size_t Size() const override {
    return sizeof *this + var_->Size() + initial_->Size() + limit_->Size() +
           (step_ ? step_->Size() : 0);
  }
  void List(std::string& out) const override {
    out += "FOR ";
    var_->List(out);
    out += '=';
    initial_->List(out);
    out += " TO ";
    limit_->List(out);
    if (step_) {
      out += " STEP ";
      step_->List(out);
    }
  }
  void Dump(std::string& out) const override {
    Statement::Dump(out);
    out += " Next: ";
    DumpLink(out, next_);
  }
  ErrorCode Resolve(StmtContext& prog) override {
    active_ = false;  // a loop left by a previous run is not resumed by a jump
    return BlockOpener::Resolve(prog);
  }
  SearchAnswer Answer(Search search, Statement* asker) override {
    if (search == Search::kNext && static_cast<ForStmt*>(asker)->Variable() == Variable())
      return FailSearch(err::kSameForVar, Location());
    return BlockOpener::Answer(search, asker);
  }

  const VarToken* Variable() const { return var_->Name(); }
  // After NEXT: the first statement of the body for another pass, or null
  // when the loop is over (or not running).
  Statement* Iterate() {
    if (!active_) return nullptr;
    var_->Add(step_value_);
    float value = var_->Evaluate();
    active_ = InRange(value);
    return active_ ? successor_ : nullptr;
  }

 protected:
  Statement* FindCloser() override {
    Statement* found = SearchAfter(Search::kNext, this);
    if (!found) return nullptr;
    next_ = static_cast<NextStmt*>(found);
    next_->Bind(this);
    return next_;
  }
  void ClearLinks() override { next_ = nullptr; }
  ErrorCode UnmatchedCode() const override { return err::kForWithoutNext; }

 private:
  // A zero step counts as ascending.
  bool InRange(float value) const {
    return step_value_ >= 0.0f ? limit_value_ >= value : value >= limit_value_;
  }

  std::unique_ptr<NumericSimpleVar> var_;
  NumericExpPtr initial_, limit_, step_;  // step_ may be null
  NextStmt* next_ = nullptr;
  float limit_value_ = 0.0f;
  float step_value_ = 1.0f;
  bool active_ = false;
};

Statement* NextStmt::Execute() {
  Statement* body = for_->Iterate();
  return body ? body : successor_;
}

void NextStmt::Dump(std::string& out) const {
  Statement::Dump(out);
  out += " For: ";
  DumpLink(out, for_);
}

SearchAnswer NextStmt::Answer(Search search, Statement* asker) {
  if (search == Search::kNext && static_cast<ForStmt*>(asker)->Variable() != Variable())
    return FailSearch(err::kNotSameForVar, Location());
  return AnswerAs(Closer::kNextFor, search, this);
}

// The loop variable is a simple numeric variable: NEXT names it, and an
// array element's subscripts could change under the loop.
std::unique_ptr<NumericSimpleVar> ParseLoopVar(StmtContext& p) {
  ParseAttempt attempt(p);
  if (tok::Category(p.Peek()) == tok::kNumVar) {
    std::unique_ptr<NumericVar> var = ParseNumericVar(p);
    if (auto* simple = dynamic_cast<NumericSimpleVar*>(var.get())) {
      var.release();
      return std::unique_ptr<NumericSimpleVar>(simple);
    }
  }
  return attempt.Replace(err::kBadNumericVar);
}

NumericExpPtr ParseOperand(StmtContext& p) {
  ParseAttempt attempt(p);
  NumericExpPtr exp = ParseNumericExp(p);
  if (!exp) return attempt.Fail(err::kBadNumericExp);
  return exp;
}

}  // namespace

StatementPtr ParseFor(StmtContext& p) {
  ParseAttempt attempt(p);
  std::unique_ptr<NumericSimpleVar> var = ParseLoopVar(p);
  if (!var) return attempt.Fail();
  if (!p.Accept(tok::kEQ)) return attempt.Fail(err::kMissingAssignOp);
  NumericExpPtr initial = ParseOperand(p);
  if (!initial) return attempt.Fail();
  if (!p.Accept(tok::kTo)) return attempt.Fail(err::kMissingDelimiter);
  NumericExpPtr limit = ParseOperand(p);
  if (!limit) return attempt.Fail();
  NumericExpPtr step;
  if (p.Accept(tok::kStep) && !(step = ParseOperand(p))) return attempt.Fail();
  return std::make_unique<ForStmt>(std::move(var), std::move(initial), std::move(limit),
                                   std::move(step));
}

StatementPtr ParseNext(StmtContext& p) {
  TokenCode next = p.Peek();
  if (next == tok::kEndOfLine || next == tok::kComment) return MakeNextWhile(false);
  std::unique_ptr<NumericSimpleVar> var = ParseLoopVar(p);
  if (!var) return nullptr;
  return std::make_unique<NextStmt>(std::move(var));
}
