// IF in its three forms (jump, one statement, block) with ELSE and ENDIF.
#include "lex/parse_attempt.h"
#include "stmt/blocks.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class EndIfStmt final : public Statement {
 public:
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kEndIf; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "ENDIF"; }
  void Dump(std::string& out) const override {
    Statement::Dump(out);
    out += " If: ";
    DumpLink(out, opener_);
  }
  int IndentClass() const override { return kCloses; }
  bool IsExecutable() const override { return false; }
  bool IsBlock() const override { return true; }
  ErrorCode Resolve(StmtContext&) override {
    opener_ = nullptr;
    return 0;
  }
  ErrorCode Check(StmtContext&) override { return opener_ ? 0 : err::kEndIfWithoutIf; }
  SearchAnswer Answer(Search search, Statement*) override {
    return AnswerAs(Closer::kEndIf, search, this);
  }
  // The IF, or the ELSE when there is one.
  void Bind(Statement* opener) { opener_ = opener; }

 private:
  Statement* opener_ = nullptr;
};

// Reached from the end of the true part: skips the false part.
class ElseStmt final : public Statement {
 public:
  Statement* Execute() override { return endIf_->Successor(); }
  TokenCode Code() const override { return tok::kElse; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "ELSE"; }
  int IndentClass() const override { return kMiddle; }
  ErrorCode Resolve(StmtContext&) override {
    matched_ = false;
    endIf_ = nullptr;
    return 0;
  }
  ErrorCode Check(StmtContext&) override { return matched_ ? 0 : err::kElseWithoutIf; }
  SearchAnswer Answer(Search search, Statement*) override {
    return AnswerAs(Closer::kElse, search, this);
  }
  // Called by its IF: finds the ENDIF; null when the search fails.
  EndIfStmt* Match() {
    matched_ = true;
    Statement* found = SearchAfter(Search::kEndIf, this);
    if (!found) {
      FailSearch(err::kIfWithoutEndIf, Location());
      return nullptr;
    }
    endIf_ = static_cast<EndIfStmt*>(found);
    endIf_->Bind(this);
    return endIf_;
  }

 private:
  bool matched_ = false;  // claimed by an IF
  EndIfStmt* endIf_ = nullptr;
};

// IF <exp> THEN alone: the block form.
class IfDoStmt final : public BlockOpener {
 public:
  explicit IfDoStmt(NumericExpPtr condition) : condition_(std::move(condition)) {}
  Statement* Execute() override {
    bool holds = condition_->Test();
    if (g_err.run) return successor_;
    return holds ? successor_ : false_;
  }
  TokenCode Code() const override { return tok::kIf; }
  size_t Size() const override { return sizeof *this + condition_->Size(); }
  void List(std::string& out) const override {
    out += "IF ";
    condition_->List(out);
    out += " THEN";
  }
  void Dump(std::string& out) const override {
    Statement::Dump(out);
    out += " EndIf: ";
    DumpLink(out, endIf_);
  }

 protected:
  Statement* FindCloser() override {
    Statement* found = SearchAfter(Search::kElseOrEndIf, this);
    if (!found) return nullptr;
    if (auto* elseStmt = dynamic_cast<ElseStmt*>(found)) {
      endIf_ = elseStmt->Match();
      if (!endIf_) return nullptr;
      false_ = elseStmt->Successor();
    } else {
      endIf_ = static_cast<EndIfStmt*>(found);
      endIf_->Bind(this);
      false_ = endIf_->Successor();
    }
    return endIf_;
  }
  void ClearLinks() override {
    endIf_ = nullptr;
    false_ = nullptr;
  }
  ErrorCode UnmatchedCode() const override { return err::kIfWithoutEndIf; }

 private:
  NumericExpPtr condition_;
  EndIfStmt* endIf_ = nullptr;
  Statement* false_ = nullptr;  // after the ELSE, or after the ENDIF
};

// IF <exp> THEN <stmtId>.
class IfStmtLabel final : public Statement {
 public:
  IfStmtLabel(NumericExpPtr condition, TargetRef target)
      : condition_(std::move(condition)), target_(std::move(target)) {}
  Statement* Execute() override {
    bool holds = condition_->Test();
    if (g_err.run) return successor_;
    return holds ? landing_ : successor_;
  }
  TokenCode Code() const override { return tok::kIf; }
  size_t Size() const override { return sizeof *this + condition_->Size(); }
  void List(std::string& out) const override {
    out += "IF ";
    condition_->List(out);
    out += " THEN ";
    target_.List(out);
  }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    out.push_back(target_.get());
  }
  bool IsBlock() const override { return true; }
  ErrorCode Resolve(StmtContext&) override {
    if (!target_.Named()) return err::kUndefinedTarget;
    landing_ = target_.Landing();
    return 0;
  }

 private:
  NumericExpPtr condition_;
  TargetRef target_;
  Statement* landing_ = nullptr;
};

// IF <exp> THEN <statement>: the statement is linked as if it stood alone
// in the IF's place, so a jump after THEN resolves like any other.
class IfStmtStmt final : public Statement {
 public:
  IfStmtStmt(NumericExpPtr condition, StatementPtr then)
      : condition_(std::move(condition)), then_(std::move(then)) {}
  Statement* Execute() override {
    bool holds = condition_->Test();
    if (g_err.run) return successor_;
    return holds ? then_->Execute() : successor_;
  }
  TokenCode Code() const override { return tok::kIf; }
  size_t Size() const override { return sizeof *this + condition_->Size() + then_->Size(); }
  void List(std::string& out) const override {
    out += "IF ";
    condition_->List(out);
    out += " THEN ";
    then_->List(out);
  }
  bool IsBlock() const override { return true; }
  void SetSuccessor(Statement* next) override {
    successor_ = next;
    then_->SetSuccessor(next);
  }
  ErrorCode Resolve(StmtContext& prog) override { return then_->Resolve(prog); }
  void Targets(std::vector<const TargetLabel*>& out) const override { then_->Targets(out); }
  ChainStart* LiteralChain(std::string* file) override { return then_->LiteralChain(file); }
  ErrorCode Check(StmtContext& prog) override { return then_->Check(prog); }

 private:
  NumericExpPtr condition_;
  StatementPtr then_;
};

bool LineEnds(StmtContext& p) {
  TokenCode next = p.Peek();
  return next == tok::kEndOfLine || next == tok::kComment;
}

}  // namespace

StatementPtr ParseIf(StmtContext& p) {
  if (p.Accept(tok::kEnd)) return ParseOnEnd(p);
  ParseAttempt attempt(p);
  NumericExpPtr condition = ParseNumericExp(p);
  if (!condition) return attempt.Fail(err::kBadNumericExp);
  if (!p.Accept(tok::kThen)) return attempt.Fail(err::kMissingDelimiter);
  if (LineEnds(p)) return std::make_unique<IfDoStmt>(std::move(condition));

  ParseAttempt then(p);
  if (TargetRef target = ParseTarget(p)) {
    // A name that goes on ("THEN A=1") is the start of an assignment.
    if (LineEnds(p)) return std::make_unique<IfStmtLabel>(std::move(condition), std::move(target));
    then.Rewind();
  }
  // An IF after THEN would nest one IF's parts inside another's.
  if (p.Peek() == tok::kIf) return attempt.Fail(err::kCompoundStmt);
  StatementPtr stmt = p.ParseAfterThen();
  if (!stmt) return attempt.Fail();
  return std::make_unique<IfStmtStmt>(std::move(condition), std::move(stmt));
}

StatementPtr ParseElse(StmtContext&) { return std::make_unique<ElseStmt>(); }

StatementPtr ParseEndIf(StmtContext&) { return std::make_unique<EndIfStmt>(); }
