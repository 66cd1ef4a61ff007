// END, STOP and SLEEP: the statements that end or pause a run.
#include "base/convert.h"
#include "console/console.h"
#include "lex/parse_attempt.h"
#include "platform/signals.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class EndStmt final : public Statement {
 public:
  Statement* Execute() override { return Fail(err::kEnd); }
  TokenCode Code() const override { return tok::kEnd; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "END"; }
};

class StopStmt final : public Statement {
 public:
  Statement* Execute() override { return Fail(err::kStop); }
  TokenCode Code() const override { return tok::kStop; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "STOP"; }
};

// Pauses for whole milliseconds; the break flag is looked at only afterwards,
// but a signal that ends the process cuts the pause short.
class SleepStmt final : public Statement {
 public:
  SleepStmt(RunState& run, NumericExpPtr time) : run_(run), time_(std::move(time)) {}
  Statement* Execute() override {
    float ms = time_->Evaluate();
    if (g_err.run) return successor_;
    if (!(ms >= 1.0f)) return Fail(err::kArgOutOfRange);
    // What was printed before the pause is seen during it, in the files too.
    FlushFiles();
    run_.console->Flush();
    // Beyond 2^50 ms (35,000 years) every pause is the same.
    PauseMs(static_cast<uint64_t>(conv::ToIntClamped(ms, 1, int64_t{1} << 50, 1)));
    return successor_;
  }
  TokenCode Code() const override { return tok::kSleep; }
  size_t Size() const override { return sizeof *this + time_->Size(); }
  void List(std::string& out) const override {
    out += "SLEEP ";
    time_->List(out);
  }

 private:
  RunState& run_;
  NumericExpPtr time_;
};

}  // namespace

StatementPtr ParseStop(StmtContext&) { return std::make_unique<StopStmt>(); }

// END IF, END WHILE and END SELECT are the block closers in two words.
StatementPtr ParseEnd(StmtContext& p) {
  if (p.Accept(tok::kIf)) return ParseEndIf(p);
  if (p.Accept(tok::kWhile)) return ParseEndWhile(p);
  if (p.Accept(tok::kSelect)) return ParseEndSelect(p);
  return std::make_unique<EndStmt>();
}

StatementPtr ParseSleep(StmtContext& p) {
  ParseAttempt attempt(p);
  NumericExpPtr time = ParseNumericExp(p);
  if (!time) return attempt.Fail(err::kBadNumericExp);
  return std::make_unique<SleepStmt>(p.run, std::move(time));
}
