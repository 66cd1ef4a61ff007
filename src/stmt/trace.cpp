// TRACE ON and TRACE OFF, also spelled TRON and TROFF: while on, the run loop
// prints each statement's number in brackets before the statement runs.
#include "platform/break_flag.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class TraceStmt final : public Statement {
 public:
  TraceStmt(bool on, const char* spelling) : on_(on), spelling_(spelling) {}
  Statement* Execute() override {
    SetTracing(on_);
    return successor_;
  }
  TokenCode Code() const override { return on_ ? tok::kTron : tok::kTroff; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += spelling_; }

 private:
  bool on_;
  const char* spelling_;  // as written: TRACE ON or TRON
};

}  // namespace

StatementPtr ParseTrace(StmtContext& p) {
  if (p.Accept(tok::kOn)) return std::make_unique<TraceStmt>(true, "TRACE ON");
  if (p.Accept(tok::kOff)) return std::make_unique<TraceStmt>(false, "TRACE OFF");
  SetParseError(err::kBadLine);
  return nullptr;
}

StatementPtr ParseTron(StmtContext&) { return std::make_unique<TraceStmt>(true, "TRON"); }

StatementPtr ParseTroff(StmtContext&) { return std::make_unique<TraceStmt>(false, "TROFF"); }
