// GOTO, GOSUB and RETURN; the computed target lists of GOTO, GOSUB and RESTORE.
#include <cmath>
#include <type_traits>
#include <vector>

#include "base/convert.h"
#include "base/dialect.h"
#include "lex/parse_attempt.h"
#include "stmt/jump_list.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

// Pushes the return point and goes to the target; past the limit the error
// ends the run on arrival.
Statement* CallSubroutine(StmtContext& prog, Statement* self, Statement* returnTo,
                          Statement* target) {
  RunFrame& frame = prog.run.frame;
  if (frame.depth >= RunFrame::kMaxGosub) {
    Raise(err::kGosubTooDeep, self->Location());
    return target;
  }
  frame.returns[frame.depth++] = returnTo;
  return target;
}

// The jump is the successor itself, so running it costs one pointer return.
class GoToLineStmt final : public Statement {
 public:
  explicit GoToLineStmt(TargetRef target) : target_(std::move(target)) {}
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kGoto; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override {
    out += "GOTO ";
    target_.List(out);
  }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    out.push_back(target_.get());
  }
  ErrorCode Resolve(StmtContext&) override {
    if (!target_.Named()) return err::kUndefinedTarget;
    successor_ = target_.Landing();
    return 0;
  }

 private:
  TargetRef target_;
};

class GoSubLineStmt final : public Statement {
 public:
  GoSubLineStmt(StmtContext& prog, TargetRef target) : prog_(prog), target_(std::move(target)) {}
  Statement* Execute() override { return CallSubroutine(prog_, this, successor_, landing_); }
  TokenCode Code() const override { return tok::kGosub; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override {
    out += "GOSUB ";
    target_.List(out);
  }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    out.push_back(target_.get());
  }
  ErrorCode Resolve(StmtContext&) override {
    if (!target_.Named()) return err::kUndefinedTarget;
    landing_ = target_.Landing();
    return 0;
  }

 private:
  StmtContext& prog_;
  TargetRef target_;
  Statement* landing_ = nullptr;
};

class ReturnStmt final : public Statement {
 public:
  explicit ReturnStmt(StmtContext& prog) : prog_(prog) {}
  Statement* Execute() override {
    RunFrame& frame = prog_.run.frame;
    if (frame.depth == 0) return Fail(err::kReturnWithoutGosub);
    Statement* back = frame.returns[--frame.depth];
    if (classic_) [[unlikely]]
      EndLoops();
    return back ? back : successor_;
  }
  TokenCode Code() const override { return tok::kReturn; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "RETURN"; }
  ErrorCode Resolve(StmtContext&) override {
    classic_ = g_classic;
    return 0;
  }

 private:
  // Out of line, so that a RETURN without the switch costs one test more.
  [[gnu::noinline]] void EndLoops() { prog_.run.EndLoopsAbove(prog_.run.frame.depth); }

  StmtContext& prog_;
  bool classic_ = false;  // ends the FOR loops of its level, as the last link found the switch
};

// Selector, targets and optional ELSE target of a computed jump.
class JumpListStmt : public Statement {
 public:
  JumpListStmt(StmtContext& prog, NumericExpPtr selector, std::vector<TargetRef> targets,
               TargetRef otherwise, bool onForm)
      : prog_(prog),
        selector_(std::move(selector)),
        targets_(std::move(targets)),
        else_(std::move(otherwise)),
        chosen_(targets_.size()),
        onForm_(onForm) {}
  TokenCode Code() const override { return onForm_ ? tok::kOn : Keyword(); }
  size_t Size() const override {
    return sizeof *this + selector_->Size() +
           targets_.capacity() * (sizeof(TargetRef) + sizeof(Statement*));
  }
  void List(std::string& out) const override {
    const char* word = KeywordText();
    if (onForm_) {
      out += "ON ";
      selector_->List(out);
      Appendf(out, " %s ", word);
    } else {
      Appendf(out, "%s ", word);
      selector_->List(out);
      out += " OF ";
    }
    for (size_t i = 0; i < targets_.size(); ++i) {
      if (i) out += ',';
      targets_[i].List(out);
    }
    if (else_) {
      out += " ELSE ";
      else_.List(out);
    }
  }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    for (const TargetRef& target : targets_) out.push_back(target.get());
    if (else_) out.push_back(else_.get());
  }
  ErrorCode Resolve(StmtContext&) override {
    for (size_t i = 0; i < targets_.size(); ++i) {
      if (!targets_[i].Named()) return err::kUndefinedTarget;
      chosen_[i] = Destination(targets_[i]);
    }
    if (else_) {
      if (!else_.Named()) return err::kUndefinedTarget;
      elseChosen_ = Destination(else_);
    }
    return 0;
  }

 protected:
  virtual TokenCode Keyword() const = 0;
  virtual const char* KeywordText() const = 0;
  // Where an entry leads: the landing of a jump, the named statement of a RESTORE.
  virtual Statement* Destination(const TargetRef& target) const { return target.Landing(); }

  // The entry the selector picks, or null out of range; also null with the
  // error set when the selector fails.
  Statement* Pick(bool rounded) {
    float value = selector_->Evaluate();
    if (g_err.run) return nullptr;
    // Rounded in float arithmetic, as the selector rule has it; NaN picks nothing.
    float index = rounded ? std::floor(value + 0.5f) : std::trunc(value);
    int64_t i;
    if (!conv::ToIntIn(index, 1, static_cast<int64_t>(chosen_.size()), &i)) return nullptr;
    return chosen_[static_cast<size_t>(i) - 1];
  }
  // The out-of-range choice: the ELSE target, or none.
  Statement* Otherwise() const { return else_ ? elseChosen_ : nullptr; }

  StmtContext& prog_;

 private:
  NumericExpPtr selector_;
  std::vector<TargetRef> targets_;
  TargetRef else_;
  std::vector<Statement*> chosen_;  // resolved entries, sized at parse time
  Statement* elseChosen_ = nullptr;
  bool onForm_;
};

class GoToListStmt final : public JumpListStmt {
 public:
  using JumpListStmt::JumpListStmt;
  Statement* Execute() override {
    Statement* target = Pick(true);
    if (g_err.run) return successor_;
    if (!target) target = Otherwise();
    return target ? target : successor_;
  }

 protected:
  TokenCode Keyword() const override { return tok::kGoto; }
  const char* KeywordText() const override { return "GOTO"; }
};

// Out of range nothing is pushed, whether or not an ELSE target is taken.
class GoSubListStmt final : public JumpListStmt {
 public:
  using JumpListStmt::JumpListStmt;
  Statement* Execute() override {
    Statement* target = Pick(true);
    if (g_err.run) return successor_;
    if (target) return CallSubroutine(prog_, this, successor_, target);
    target = Otherwise();
    return target ? target : successor_;
  }

 protected:
  TokenCode Keyword() const override { return tok::kGosub; }
  const char* KeywordText() const override { return "GOSUB"; }
};

// Selects by truncation, not rounding, and moves the DATA position.
class RestoreListStmt final : public JumpListStmt {
 public:
  using JumpListStmt::JumpListStmt;
  Statement* Execute() override {
    Statement* target = Pick(false);
    if (g_err.run) return successor_;
    if (!target) target = Otherwise();
    // An entry with no DATA at or after it starts reading over.
    if (target && !target->RestoreHere()) prog_.run.data.RestoreFirst();
    return successor_;
  }

 protected:
  TokenCode Keyword() const override { return tok::kRestore; }
  const char* KeywordText() const override { return "RESTORE"; }
  Statement* Destination(const TargetRef& target) const override { return target.Named(); }
};

TargetRef ExpectTarget(StmtContext& p) {
  ParseAttempt attempt(p);
  TargetRef target = ParseTarget(p);
  if (!target) attempt.Fail(err::kBadStmtNumber);
  return target;
}

// GOTO <stmtId> or GOTO <exp> OF ...: a plain number or label alone is the
// single form; anything else is a selector.
template <typename Single>
StatementPtr ParseJump(StmtContext& p, JumpKind kind) {
  ParseAttempt attempt(p);
  if (TargetRef target = ParseTarget(p)) {
    TokenCode next = p.Peek();
    if (next == tok::kEndOfLine || next == tok::kComment) {
      if constexpr (std::is_constructible_v<Single, StmtContext&, TargetRef>)
        return std::make_unique<Single>(p, std::move(target));
      else
        return std::make_unique<Single>(std::move(target));
    }
    attempt.Rewind();
  }
  NumericExpPtr selector = ParseNumericExp(p);
  if (!selector || !p.Accept(tok::kOf))
    return attempt.Fail(selector ? err::kMissingDelimiter : err::kBadStmtNumber);
  return ParseJumpList(p, kind, std::move(selector), false);
}

}  // namespace

StatementPtr ParseJumpList(StmtContext& p, JumpKind kind, NumericExpPtr selector, bool onForm) {
  ParseAttempt attempt(p);
  std::vector<TargetRef> targets;
  TargetRef otherwise;
  do {
    TargetRef target = ExpectTarget(p);
    if (!target) break;
    targets.push_back(std::move(target));
  } while (p.Accept(tok::kComma));
  bool ok = !g_err.parse;
  if (ok && p.Accept(tok::kElse)) ok = static_cast<bool>(otherwise = ExpectTarget(p));
  if (!ok) return attempt.Fail();
  switch (kind) {
    case JumpKind::kGoto:
      return std::make_unique<GoToListStmt>(p, std::move(selector), std::move(targets),
                                            std::move(otherwise), onForm);
    case JumpKind::kGosub:
      return std::make_unique<GoSubListStmt>(p, std::move(selector), std::move(targets),
                                             std::move(otherwise), onForm);
    case JumpKind::kRestore:
      break;
  }
  return std::make_unique<RestoreListStmt>(p, std::move(selector), std::move(targets),
                                           std::move(otherwise), onForm);
}

StatementPtr ParseGoto(StmtContext& p) { return ParseJump<GoToLineStmt>(p, JumpKind::kGoto); }

StatementPtr ParseGosub(StmtContext& p) { return ParseJump<GoSubLineStmt>(p, JumpKind::kGosub); }

StatementPtr ParseReturn(StmtContext& p) { return std::make_unique<ReturnStmt>(p); }

// The RESTORE parser has read the selector; OF may or may not be consumed yet.
StatementPtr ParseRestoreOf(StmtContext& p, NumericExpPtr selector) {
  p.Accept(tok::kOf);
  return ParseJumpList(p, JumpKind::kRestore, std::move(selector), false);
}
