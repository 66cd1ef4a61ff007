// LINPUT: one whole typed line, blanks, quotes and commas included, into a string.
#include "console/console.h"
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/prompted.h"
#include "stmt/stmt_context.h"

namespace {

class LinputUserStmt : public Statement {
 public:
  LinputUserStmt(RunState& run, std::unique_ptr<StringVar> target)
      : run_(run), target_(std::move(target)) {}
  // An empty line is an empty string; a break ends the statement; the end of
  // input raises kFileEnd as INPUT does.
  Statement* Execute() override {
    Console& con = *run_.console;
    con.Printf("%s", Prompt());
    char line[Console::kLineMax + 1];
    int n = con.ReadLine(line);
    if (n == Console::kEndOfInput) return Fail(err::kFileEnd);
    if (n < 0) return successor_;
    target_->Assign(std::string_view(line, static_cast<size_t>(n)));
    return successor_;
  }
  TokenCode Code() const override { return tok::kLinput; }
  size_t Size() const override { return sizeof *this + target_->Size(); }
  void List(std::string& out) const override {
    out += "LINPUT ";
    ListPrompt(out);
    target_->List(out);
  }

 protected:
  virtual const char* Prompt() const { return "?"; }
  virtual void ListPrompt(std::string&) const {}

 private:
  RunState& run_;  // asks and reads on its console
  std::unique_ptr<StringVar> target_;
};

}  // namespace

// LINPUT ["prompt",] stringVar, as INPUT takes its prompt.
StatementPtr ParseLinput(StmtContext& p) {
  ParseAttempt attempt(p);
  std::string prompt;
  bool prompted = p.Accept(tok::kString);
  if (prompted) {
    prompt = p.Text();
    if (!p.Accept(tok::kComma)) return attempt.Replace(err::kMissingDelimiter);
  }
  std::unique_ptr<StringVar> target = ParseStringVar(p);
  if (!target) return attempt.Fail(err::kBadStringVar);
  if (prompted) return std::make_unique<Prompted<LinputUserStmt>>(prompt, p.run, std::move(target));
  return std::make_unique<LinputUserStmt>(p.run, std::move(target));
}
