// ENTER: one typed item within a time limit, with the time the answer took;
// and ENTER #, the number of the terminal's port.
#include "base/convert.h"
#include "console/console.h"
#include "lex/input_scanner.h"
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"
#include "stmt/targets.h"

namespace {

// The limit in seconds, the variable that gets the response time, and the target.
class TimedEntry final {
 public:
  static constexpr float kTimedOut = -256;  // the response when no answer came in time

  TimedEntry(NumericExpPtr seconds, std::unique_ptr<NumericVar> response,
             std::unique_ptr<Target> target)
      : seconds_(std::move(seconds)), response_(std::move(response)), target_(std::move(target)) {}
  size_t Size() const {
    return sizeof *this + seconds_->Size() + response_->Size() + target_->Size();
  }
  void List(std::string& out) const {
    seconds_->List(out);
    out += ',';
    response_->List(out);
    out += ',';
    target_->List(out);
  }
  // Waits for the answer on the console; 0 or the error that stops the statement.
  ErrorCode Run(Console& con);

 private:
  NumericExpPtr seconds_;
  std::unique_ptr<NumericVar> response_;
  std::unique_ptr<Target> target_;
};

// The answer must be one item that suits the target: a number for a numeric
// target; text, a quoted string, a number or nothing for a string target.
ErrorCode TimedEntry::Run(Console& con) {
  float seconds = seconds_->Evaluate();
  if (g_err.run) return g_err.run;
  int32_t limit = conv::RoundToInt32(seconds);
  if (limit < 1 || limit > 255) return err::kArgOutOfRange;
  char line[Console::kLineMax + 1];
  unsigned elapsed = 0;
  int n = con.ReadLineTimed(line, static_cast<unsigned>(limit), &elapsed);
  if (n == Console::kEndOfInput) return err::kFileEnd;
  if (n == Console::kBreakRead) return g_err.run;
  if (n == Console::kTimedOut) {
    response_->Assign(kTimedOut);
    return 0;
  }
  InputScanner scanner;
  scanner.Start(line);
  unsigned cls = scanner.Next();
  bool fits = target_->IsString() ? cls == item::kString || cls == item::kText ||
                                        item::IsNumber(cls) || cls == item::kEnd
                                  : item::IsNumber(cls);
  if (fits && cls != item::kEnd && scanner.Next() != item::kEnd) fits = false;
  auto time = static_cast<float>(elapsed);
  response_->Assign(fits ? time : -time);
  if (!fits) return g_err.run;
  scanner.Start(line);  // the first item again: the check above moved past it
  cls = scanner.Next();
  if (target_->IsString())
    target_->Assign(cls == item::kEnd ? std::string_view() : scanner.Text());
  else
    target_->Assign(scanner.Number(cls));
  return g_err.run;
}

// ENTER seconds, response, target.
class EnterStmt final : public Statement {
 public:
  EnterStmt(RunState& run, TimedEntry entry) : run_(run), entry_(std::move(entry)) {}
  Statement* Execute() override {
    ErrorCode code = entry_.Run(*run_.console);
    return code ? Fail(code) : successor_;
  }
  TokenCode Code() const override { return tok::kEnter; }
  size_t Size() const override { return sizeof *this + entry_.Size(); }
  void List(std::string& out) const override {
    out += "ENTER ";
    entry_.List(out);
  }

 private:
  RunState& run_;  // reads on its console
  TimedEntry entry_;
};

// ENTER #port [, seconds, response, target]: one terminal, port 0.
class EnterPortStmt final : public Statement {
 public:
  EnterPortStmt(RunState& run, std::unique_ptr<NumericVar> port, std::unique_ptr<TimedEntry> entry)
      : run_(run), port_(std::move(port)), entry_(std::move(entry)) {}
  Statement* Execute() override {
    port_->Assign(0.0f);
    if (g_err.run || !entry_) return successor_;
    ErrorCode code = entry_->Run(*run_.console);
    return code ? Fail(code) : successor_;
  }
  TokenCode Code() const override { return tok::kEnter; }
  size_t Size() const override {
    return sizeof *this + port_->Size() + (entry_ ? entry_->Size() : 0);
  }
  void List(std::string& out) const override {
    out += "ENTER #";
    port_->List(out);
    if (!entry_) return;
    out += ',';
    entry_->List(out);
  }

 private:
  RunState& run_;
  std::unique_ptr<NumericVar> port_;
  std::unique_ptr<TimedEntry> entry_;  // null for the port alone
};

// "seconds, response, target"; null with the parse error set.
std::unique_ptr<TimedEntry> ParseTimedEntry(StmtContext& p) {
  ParseAttempt attempt(p);
  NumericExpPtr seconds = ParseNumericExp(p);
  if (!seconds) return attempt.Fail(err::kBadNumericExp);
  if (!p.Accept(tok::kComma)) return attempt.Replace(err::kMissingDelimiter);
  std::unique_ptr<NumericVar> response = ParseNumericVar(p);
  if (!response) return attempt.Fail(err::kBadNumericVar);
  if (!p.Accept(tok::kComma)) return attempt.Replace(err::kMissingDelimiter);
  std::unique_ptr<Target> target;
  if (auto numeric = ParseNumericVar(p))
    target = std::make_unique<NumericTarget>(std::move(numeric));
  else if (auto text = ParseStringVar(p))
    target = std::make_unique<StringTarget>(std::move(text));
  if (!target) return attempt.Fail(err::kBadTarget);
  return std::make_unique<TimedEntry>(std::move(seconds), std::move(response), std::move(target));
}

}  // namespace

StatementPtr ParseEnter(StmtContext& p) {
  ParseAttempt attempt(p);
  StatementPtr stmt;
  if (p.Accept(tok::kHash)) {
    std::unique_ptr<NumericVar> port = ParseNumericVar(p);
    if (!port) {
      attempt.Fail(err::kBadNumericVar);
    } else if (!p.Accept(tok::kComma)) {
      stmt = std::make_unique<EnterPortStmt>(p.run, std::move(port), nullptr);
    } else if (auto entry = ParseTimedEntry(p)) {
      stmt = std::make_unique<EnterPortStmt>(p.run, std::move(port), std::move(entry));
    }
  } else if (auto entry = ParseTimedEntry(p)) {
    stmt = std::make_unique<EnterStmt>(p.run, std::move(*entry));
  }
  if (!stmt) return attempt.Fail();
  return stmt;
}
