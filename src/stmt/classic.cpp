// The spellings of old listings: GO TO and GO SUB in two words, and REM run
// together with the remark (REMARK). They are read here and list in the house form.
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/simple_stmts.h"
#include "stmt/stmt_context.h"

namespace {

bool SameWord(std::string_view text, std::string_view upper) {
  if (text.size() != upper.size()) return false;
  for (size_t i = 0; i < text.size(); ++i)
    if ((text[i] & ~0x20) != upper[i]) return false;
  return true;
}

// A plain word token: the scanner's class before any symbol lookup.
bool IsPlainWord(const StmtContext& p) { return p.Current().lexClass == tok::kWord; }

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

}  // namespace

bool AcceptGo(StmtContext& p, TokenCode keyword) {
  ParseAttempt attempt(p);
  TokenCode code = p.GetToken();
  if (code == keyword) return true;
  if (tok::Category(code) == tok::kNumVar && IsPlainWord(p) && SameWord(p.Text(), "GO")) {
    code = p.GetToken();
    if (keyword == tok::kGoto && code == tok::kTo) return true;
    if (keyword == tok::kGosub && tok::Category(code) == tok::kNumVar && IsPlainWord(p) &&
        SameWord(p.Text(), "SUB"))
      return true;
  }
  attempt.Rewind();
  return false;
}

StatementPtr ParseClassicGo(StmtContext& p) {
  if (AcceptGo(p, tok::kGoto)) return ParseGoto(p);
  if (AcceptGo(p, tok::kGosub)) return ParseGosub(p);
  return nullptr;
}

StatementPtr ParseRemWord(StmtContext& p) {
  ParseAttempt attempt(p);
  TokenCode code = p.GetToken();
  std::string_view word = p.Text();
  bool remark = tok::Category(code) == tok::kNumVar && IsPlainWord(p) && word.size() > 3 &&
                SameWord(word.substr(0, 3), "REM") && IsLetter(word[3]);
  attempt.Rewind();
  if (!remark) return nullptr;
  std::string_view rest = p.RestOfLine();
  while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
  return std::make_unique<RemStmt>(rest.substr(3));
}
