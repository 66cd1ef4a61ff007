// FOR and NEXT: counted loops, linked once and run without a loop stack; under
// the classic switch, matched while running, as old systems did.
#include "base/dialect.h"
#include "lex/parse_attempt.h"
#include "stmt/blocks.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class ForStmt;

// A zero step counts as ascending.
bool InRange(float value, float limit, float step) {
  return step >= 0.0f ? limit >= value : value >= limit;
}

// NEXT <var>: closes the FOR of the same variable. Under the classic switch it
// continues the most recent active loop of its variable, found while running.
class NextStmt final : public Statement {
 public:
  NextStmt(RunState& run, std::unique_ptr<NumericSimpleVar> var)
      : run_(run), var_(std::move(var)) {}
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
    classic_ = g_classic;
    return 0;
  }
  ErrorCode Check(StmtContext&) override { return for_ || classic_ ? 0 : err::kNextWithoutFor; }
  SearchAnswer Answer(Search search, Statement* asker) override;
  const VarToken* Variable() const { return var_->Name(); }
  void Bind(ForStmt* loop) { for_ = loop; }

 private:
  // Out of line, so that the linked loop's NEXT stays a few instructions.
  [[gnu::noinline]] Statement* ExecuteClassic();

  RunState& run_;
  std::unique_ptr<NumericSimpleVar> var_;  // as written; the loop runs on the FOR's
  ForStmt* for_ = nullptr;
  bool classic_ = false;  // matched while running: the switch as the last link found it
};

class ForStmt final : public BlockOpener {
 public:
  ForStmt(RunState& run, std::unique_ptr<NumericSimpleVar> var, NumericExpPtr initial,
          NumericExpPtr limit, NumericExpPtr step)
      : run_(run),
        var_(std::move(var)),
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
    if (classic_) return StartClassic(initial, limit, step);
    step_value_ = step;
    limit_value_ = limit;
    active_ = InRange(initial, limit, step);
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
    classic_ = g_classic;
    skip_ = nullptr;
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
    active_ = InRange(value, limit_value_, step_value_);
    return active_ ? successor_ : nullptr;
  }

 protected:
  // Under the classic switch no NEXT is bound: the FOR is a block of its own,
  // which other blocks' searches pass over.
  Statement* FindCloser() override {
    if (classic_) return this;
    Statement* found = SearchAfter(Search::kNext, this);
    if (!found) return nullptr;
    next_ = static_cast<NextStmt*>(found);
    next_->Bind(this);
    return next_;
  }
  void ClearLinks() override { next_ = nullptr; }
  ErrorCode UnmatchedCode() const override { return err::kForWithoutNext; }

 private:
  // A FOR of a variable that has an active loop at this GOSUB level replaces
  // that loop and the loops opened after it.
  Statement* StartClassic(float initial, float limit, float step) {
    std::vector<ActiveLoop>& loops = run_.loops;
    uint32_t depth = run_.frame.depth;
    for (size_t i = loops.size(); i > 0 && loops[i - 1].depth == depth; --i) {
      if (loops[i - 1].var == Variable()) {
        loops.erase(loops.begin() + static_cast<ptrdiff_t>(i - 1), loops.end());
        break;
      }
    }
    if (InRange(initial, limit, step)) {
      loops.push_back({Variable(), successor_, limit, step, depth});
      return successor_;
    }
    // A loop that runs no pass goes on after the first NEXT of its variable.
    if (!skip_) {
      for (Statement* s = Next(); s && !skip_; s = s->Next())
        if (auto* next = dynamic_cast<NextStmt*>(s); next && next->Variable() == Variable())
          skip_ = next;
      if (!skip_) return Fail(err::kForWithoutNext);
    }
    return skip_->Successor();
  }

  RunState& run_;
  std::unique_ptr<NumericSimpleVar> var_;
  NumericExpPtr initial_, limit_, step_;  // step_ may be null
  NextStmt* next_ = nullptr;
  Statement* skip_ = nullptr;  // classic: the NEXT a loop without a pass skips past
  float limit_value_ = 0.0f;
  float step_value_ = 1.0f;
  bool active_ = false;
  bool classic_ = false;
};

Statement* NextStmt::Execute() {
  if (classic_) return ExecuteClassic();
  Statement* body = for_->Iterate();
  return body ? body : successor_;
}

// Ends the loops opened after the most recent one of var at depth, which is
// left last; false when there is none.
[[gnu::noinline]] bool UnwindTo(std::vector<ActiveLoop>& loops, const VarToken* var,
                                uint32_t depth) {
  size_t i = loops.size();
  while (i > 0 && loops[i - 1].depth == depth && loops[i - 1].var != var) --i;
  if (i == 0 || loops[i - 1].depth != depth) return false;
  loops.erase(loops.begin() + static_cast<ptrdiff_t>(i), loops.end());
  return true;
}

// The most recent active loop of this variable at this GOSUB level goes on;
// the loops opened after it end. Mostly it is the innermost one.
Statement* NextStmt::ExecuteClassic() {
  std::vector<ActiveLoop>& loops = run_.loops;
  uint32_t depth = run_.frame.depth;
  const VarToken* var = Variable();
  if (loops.empty() || loops.back().var != var || loops.back().depth != depth) [[unlikely]]
    if (!UnwindTo(loops, var, depth)) return Fail(err::kNextWithoutFor);
  const ActiveLoop& loop = loops.back();
  var_->Add(loop.step);
  if (InRange(var_->Evaluate(), loop.limit, loop.step)) return loop.body;
  loops.pop_back();
  return successor_;
}

void NextStmt::Dump(std::string& out) const {
  Statement::Dump(out);
  out += " For: ";
  DumpLink(out, for_);
}

SearchAnswer NextStmt::Answer(Search search, Statement* asker) {
  if (classic_) return {SearchAnswer::kPass};
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
  return std::make_unique<ForStmt>(p.run, std::move(var), std::move(initial), std::move(limit),
                                   std::move(step));
}

StatementPtr ParseNext(StmtContext& p) {
  TokenCode next = p.Peek();
  if (next == tok::kEndOfLine || next == tok::kComment) return MakeNextWhile(false);
  std::unique_ptr<NumericSimpleVar> var = ParseLoopVar(p);
  if (!var) return nullptr;
  return std::make_unique<NextStmt>(p.run, std::move(var));
}
