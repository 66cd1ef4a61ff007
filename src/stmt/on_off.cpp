// ON <exp> GOTO/GOSUB/RESTORE, ON ERROR and OFF ERROR (the latter two are
// accepted so that programs load and list, and refuse to run).
#include "lex/parse_attempt.h"
#include "stmt/jump_list.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class OnErrorStmt final : public Statement {
 public:
  explicit OnErrorStmt(TargetRef target) : target_(std::move(target)) {}
  Statement* Execute() override { return Fail(err::kNotSupported); }
  TokenCode Code() const override { return tok::kOn; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override {
    out += "ON ERROR THEN ";
    target_.List(out);
  }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    out.push_back(target_.get());
  }
  ErrorCode Resolve(StmtContext&) override {
    if (!target_.Named()) return Raise(err::kUndefinedTarget, Location());
    landing_ = target_.Landing();
    return g_err.run;
  }

 private:
  TargetRef target_;
  Statement* landing_ = nullptr;  // kept for when error trapping exists
};

class OffErrorStmt final : public Statement {
 public:
  Statement* Execute() override { return Fail(err::kNotSupported); }
  TokenCode Code() const override { return tok::kOn; }  // the OFF statements report ON
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "OFF ERROR"; }
};

StatementPtr ParseOnError(StmtContext& p) {
  TargetRef target = ParseThenTarget(p);
  if (!target) return nullptr;
  return std::make_unique<OnErrorStmt>(std::move(target));
}

}  // namespace

StatementPtr ParseOn(StmtContext& p) {
  if (p.Accept(tok::kError)) return ParseOnError(p);
  if (p.Accept(tok::kEnd)) return ParseOnEnd(p);
  ParseAttempt attempt(p);
  NumericExpPtr selector = ParseNumericExp(p);
  if (!selector) return attempt.Fail(err::kBadNumericExp);
  JumpKind kind;
  if (AcceptGo(p, tok::kGoto)) {
    kind = JumpKind::kGoto;
  } else if (AcceptGo(p, tok::kGosub)) {
    kind = JumpKind::kGosub;
  } else if (p.Accept(tok::kRestore)) {
    kind = JumpKind::kRestore;
  } else {
    return attempt.Replace(err::kMissingKeyword);
  }
  StatementPtr stmt = ParseJumpList(p, kind, std::move(selector), true);
  if (!stmt) return attempt.Fail();
  return stmt;
}

StatementPtr ParseOff(StmtContext& p) {
  if (p.Accept(tok::kError)) return std::make_unique<OffErrorStmt>();
  if (p.Accept(tok::kEnd)) return ParseOffEnd(p);
  SetParseError(err::kMissingKeyword);
  return nullptr;
}
