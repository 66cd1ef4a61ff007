// WHILE ... NEXT/ENDWHILE and REPEAT ... UNTIL: condition loops.
#include "lex/parse_attempt.h"
#include "platform/break_flag.h"
#include "stmt/blocks.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class WhileStmt;
class RepeatStmt;

// NEXT (alone) or ENDWHILE: returns to its WHILE, which tests again.
class NextWhileStmt final : public Statement {
 public:
  explicit NextWhileStmt(bool endWhile) : endWhile_(endWhile) {}
  Statement* Execute() override;
  TokenCode Code() const override { return endWhile_ ? tok::kEndWhile : tok::kNext; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += endWhile_ ? "ENDWHILE" : "NEXT"; }
  void Dump(std::string& out) const override;
  int IndentClass() const override { return kCloses; }
  bool IsBlock() const override { return true; }
  ErrorCode Resolve(StmtContext&) override {
    while_ = nullptr;
    return 0;
  }
  ErrorCode Check(StmtContext&) override { return while_ ? 0 : err::kNextWithoutWhile; }
  SearchAnswer Answer(Search search, Statement*) override {
    return AnswerAs(Closer::kNextWhile, search, this);
  }
  void Bind(WhileStmt* loop) { while_ = loop; }

 private:
  bool endWhile_;  // spelled ENDWHILE (or END WHILE) rather than NEXT
  WhileStmt* while_ = nullptr;
};

class WhileStmt final : public BlockOpener {
 public:
  explicit WhileStmt(NumericExpPtr condition) : condition_(std::move(condition)) {}
  Statement* Execute() override {
    bool holds = condition_->Test();
    if (g_err.run) return successor_;
    return holds ? successor_ : end_->Successor();
  }
  // The test again, made by the loop's NEXT in the WHILE's stead; an error in
  // the condition is still reported at the WHILE.
  Statement* Again() {
    bool holds = condition_->Test();
    if (g_err.run) [[unlikely]] {
      if (!HasLocation()) g_err.location = Location();
      return successor_;
    }
    return holds ? successor_ : end_->Successor();
  }
  TokenCode Code() const override { return tok::kWhile; }
  size_t Size() const override { return sizeof *this + condition_->Size(); }
  void List(std::string& out) const override {
    out += "WHILE ";
    condition_->List(out);
  }
  void Dump(std::string& out) const override {
    Statement::Dump(out);
    out += " Next: ";
    DumpLink(out, end_);
  }

 protected:
  Statement* FindCloser() override {
    Statement* found = SearchAfter(Search::kEndWhile, this);
    if (!found) return nullptr;
    end_ = static_cast<NextWhileStmt*>(found);
    end_->Bind(this);
    return end_;
  }
  void ClearLinks() override { end_ = nullptr; }
  ErrorCode UnmatchedCode() const override { return err::kWhileWithoutNext; }

 private:
  NumericExpPtr condition_;
  NextWhileStmt* end_ = nullptr;  // its successor is the exit
};

// The NEXT tests the condition itself, one statement fewer per pass; under
// TRACE it goes back to the WHILE, so that the WHILE is listed as it runs.
Statement* NextWhileStmt::Execute() { return Tracing() ? while_ : while_->Again(); }

void NextWhileStmt::Dump(std::string& out) const {
  Statement::Dump(out);
  out += " While: ";
  DumpLink(out, while_);
}

class UntilStmt final : public Statement {
 public:
  explicit UntilStmt(NumericExpPtr condition) : condition_(std::move(condition)) {}
  Statement* Execute() override;
  TokenCode Code() const override { return tok::kUntil; }
  size_t Size() const override { return sizeof *this + condition_->Size(); }
  void List(std::string& out) const override {
    out += "UNTIL ";
    condition_->List(out);
  }
  void Dump(std::string& out) const override;
  int IndentClass() const override { return kCloses; }
  bool IsBlock() const override { return true; }
  ErrorCode Resolve(StmtContext&) override {
    repeat_ = nullptr;
    return 0;
  }
  ErrorCode Check(StmtContext&) override { return repeat_ ? 0 : err::kUntilWithoutRepeat; }
  SearchAnswer Answer(Search search, Statement*) override {
    return AnswerAs(Closer::kUntil, search, this);
  }
  void Bind(RepeatStmt* loop) { repeat_ = loop; }

 private:
  NumericExpPtr condition_;
  RepeatStmt* repeat_ = nullptr;  // its successor is the top of the loop
};

// REPEAT does nothing when run; the successor chain skips it.
class RepeatStmt final : public BlockOpener {
 public:
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kRepeat; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "REPEAT"; }
  void Dump(std::string& out) const override {
    Statement::Dump(out);
    out += " Until: ";
    DumpLink(out, until_);
  }
  bool IsExecutable() const override { return false; }

 protected:
  Statement* FindCloser() override {
    Statement* found = SearchAfter(Search::kUntil, this);
    if (!found) return nullptr;
    until_ = static_cast<UntilStmt*>(found);
    until_->Bind(this);
    return until_;
  }
  void ClearLinks() override { until_ = nullptr; }
  ErrorCode UnmatchedCode() const override { return err::kRepeatWithoutUntil; }

 private:
  UntilStmt* until_ = nullptr;
};

Statement* UntilStmt::Execute() {
  bool holds = condition_->Test();
  if (g_err.run) return successor_;
  return holds ? successor_ : repeat_->Successor();
}

void UntilStmt::Dump(std::string& out) const {
  Statement::Dump(out);
  out += " Repeat: ";
  DumpLink(out, repeat_);
}

NumericExpPtr ParseCondition(StmtContext& p) {
  ParseAttempt attempt(p);
  NumericExpPtr exp = ParseNumericExp(p);
  if (!exp) return attempt.Fail(err::kBadNumericExp);
  return exp;
}

}  // namespace

StatementPtr MakeNextWhile(bool endWhile) { return std::make_unique<NextWhileStmt>(endWhile); }

StatementPtr ParseWhile(StmtContext& p) {
  NumericExpPtr condition = ParseCondition(p);
  if (!condition) return nullptr;
  return std::make_unique<WhileStmt>(std::move(condition));
}

StatementPtr ParseEndWhile(StmtContext&) { return MakeNextWhile(true); }

StatementPtr ParseRepeat(StmtContext&) { return std::make_unique<RepeatStmt>(); }

StatementPtr ParseUntil(StmtContext& p) {
  NumericExpPtr condition = ParseCondition(p);
  if (!condition) return nullptr;
  return std::make_unique<UntilStmt>(std::move(condition));
}
