// CHAIN: the statement that asks the program to load another program file,
// link it and hand it the COM variables; the run loop then carries on in it.
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

// CHAIN [r,] name [, stmtId]. Without r, a failure stops the run; with r, r
// gets the failure's code and the program goes on. A chain that works sets r
// to 0 first, so a COM variable r tells the new program so.
class ChainStmt final : public Statement {
 public:
  ChainStmt(StmtContext& context, std::unique_ptr<NumericVar> status, StringExpPtr name,
            ChainStart start)
      : context_(context),
        status_(std::move(status)),
        name_(std::move(name)),
        start_(std::move(start)) {}
  Statement* Execute() override {
    std::string path(name_->Evaluate(work_));
    if (g_err.run) return Fail(g_err.run);
    if (status_) status_->Assign(0.0f);
    // With r the program reports for itself, so the loader stays quiet.
    bool linkError = false;
    ErrorCode code = context_.Chain(path, start_, !status_, &linkError);
    if (!code) return nullptr;  // the run loop takes over
    if (linkError && !status_) {
      // Reported where the new program failed, in its own file.
      if (HasLocation()) SetErrorFile(path.c_str());
      return successor_;
    }
    return Refuse(code);
  }
  TokenCode Code() const override { return tok::kChain; }
  ChainStart* LiteralChain(std::string* file) override {
    if (name_->Kind() != StringExp::kLiteral || !start_.number) return nullptr;
    StringValue work;
    *file = name_->Evaluate(work);
    return &start_;
  }
  size_t Size() const override {
    return sizeof *this + (status_ ? status_->Size() : 0) + name_->Size() + start_.label.size() +
           work_.Capacity();
  }
  void List(std::string& out) const override {
    out += "CHAIN ";
    if (status_) {
      status_->List(out);
      out += ',';
    }
    name_->List(out);
    if (start_.number) {
      out += ',';
      out += std::to_string(start_.number);
    } else if (!start_.label.empty()) {
      out += ',';
      out += start_.label;
      out += ':';
    }
  }

 private:
  // A chain that fails: r gets the code and the run goes on, else the run stops.
  Statement* Refuse(ErrorCode code) {
    ClearError();
    if (!status_) return Fail(code);
    status_->Assign(static_cast<float>(code));
    return g_err.run ? Fail(g_err.run) : successor_;
  }

  StmtContext& context_;
  std::unique_ptr<NumericVar> status_;  // r, or null
  StringExpPtr name_;
  ChainStart start_;
  StringValue work_;
};

}  // namespace

StatementPtr ParseChain(StmtContext& p) {
  ParseAttempt attempt(p);
  std::unique_ptr<NumericVar> status = ParseNumericVar(p);
  if (status && !p.Accept(tok::kComma)) {
    SetParseError(err::kMissingDelimiter);
    return nullptr;
  }
  if (!status) attempt.Rewind();
  StringExpPtr name = ParseStringExp(p);
  if (!name) {
    if (!g_err.parse) SetParseError(err::kBadStringExp);
    return nullptr;
  }
  ChainStart start;
  if (p.Accept(tok::kComma)) {
    TokenCode code = p.GetToken();
    if (code == tok::kInteger) {
      uint64_t value = 0;
      for (char c : p.Text()) value = std::min<uint64_t>(value * 10 + (c - '0'), 1000000);
      if (value >= 1 && value <= 999999) start.number = static_cast<uint32_t>(value);
    } else if (tok::Category(code) == tok::kNumVar && code >= tok::kFirstCoded && p.Symbol()) {
      start.label = p.Text();
      p.Accept(tok::kColon);
    }
    if (!start.number && start.label.empty()) {
      SetParseError(err::kBadStmtNumber);
      return nullptr;
    }
  }
  return std::make_unique<ChainStmt>(p, std::move(status), std::move(name), std::move(start));
}
