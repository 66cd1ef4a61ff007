#include "program/program.h"

#include <algorithm>
#include <cctype>

#include "expr/numeric_exp.h"
#include "files/file_functions.h"
#include "lex/parse_attempt.h"
#include "program/statement_table.h"
#include "stmt/parsers.h"
#include "stmt/simple_stmts.h"

Program::Program(std::string name) : name_(std::move(name)) {
  run.files = &files_;
  run.matrix = &matrix_;
  SetParseError(0);
  endMark_ = statements_.Append(std::make_unique<EndMarkStmt>());
}

Program::~Program() {
  // Statements own the references; they unlink themselves as they go.
  statements_.Clear();
}

Statement* Program::Find(uint32_t number) const {
  auto it = lines_.find(number);
  return it != lines_.end() ? it->second : nullptr;
}

// Numbered lines rise through the list (typed lines are sorted in, loaded
// ones must rise), so the index order is the list order.
void Program::Index(Statement* head) {
  // The line's number reaches the statements that continue it only once they are linked.
  if (head->Followed()) {
    if (head->Number() != 0)
      head->SetNumber(head->Number());
    else if (head->Location() & loc::kFileLine)
      head->SetFileLine(loc::Number(head->Location()));
  }
  if (uint32_t number = head->Number(); number != 0 && !head->Hidden())
    lines_.emplace(number, head);
}

void Program::Unindex(Statement* head) {
  auto it = lines_.find(head->Number());
  if (it != lines_.end() && it->second == head) lines_.erase(it);
}

void Program::Append(std::vector<StatementPtr> line) {
  if (line.empty()) return;
  Statement* head = line.front().get();
  for (auto& s : line) {
    if (s->ParseError()) ++badLines_;
    statements_.InsertBefore(std::move(s), endMark_);
  }
  Index(head);
  linksCurrent_ = false;
  ++edits_;
}

void Program::InsertTyped(std::vector<StatementPtr> line) {
  if (line.empty()) return;
  uint32_t number = line.front()->Number();
  Statement* before = endMark_;
  if (auto it = lines_.lower_bound(number); it != lines_.end()) {
    before = it->second;
    if (it->first == number) {
      Statement* old = before;
      before = old->Next();
      while (before != endMark_ && (before->Location() & loc::kTrailing)) before = before->Next();
      Delete(old);
    }
  }
  Statement* head = line.front().get();
  for (auto& s : line) {
    if (s->ParseError()) ++badLines_;
    statements_.InsertBefore(std::move(s), before);
  }
  Index(head);
  linksCurrent_ = false;
  ++edits_;
}

void Program::Forget(Statement* stmt) {
  if (stmt->ParseError()) --badLines_;
  run.data.Forget(stmt);
}

void Program::Delete(Statement* stmt) {
  if (!stmt || stmt == endMark_) return;
  Unindex(stmt);
  // The statements that continue the line go with it, up to the one that ends it.
  for (bool more = stmt->Followed(); more;) {
    Statement* next = stmt->Next();
    if (!next || next == endMark_) break;
    more = next->Followed();
    Forget(next);
    statements_.Erase(next);
  }
  Forget(stmt);
  statements_.Erase(stmt);
  linksCurrent_ = false;
  ++edits_;
  // DEF statements own what this table points to; the next link rebuilds it.
  functions.clear();
}

// --- Parsing and listing.

namespace {

// Whether text holds a run of letters and digits longer than a name keeps: such a
// name is cut on entry, and its listing could then read the classic way.
bool HoldsOverlongWord(std::string_view text) {
  size_t run = 0;
  for (char c : text) {
    run = std::isalnum(static_cast<unsigned char>(c)) || c == '_' ? run + 1 : 0;
    if (run > VarToken::kMaxName) return true;
  }
  return false;
}

}  // namespace

// Label, statement and trailing comment into line; false when the line fails.
bool Program::ParseStatements(std::vector<StatementPtr>& line) {
  StatementPtr stmt;
  bool failed = false;
  // A leading label: a plain word and ":".
  ParseAttempt start(*this);
  std::string label;
  if (tok::Category(GetToken()) == tok::kNumVar && Symbol()) label = Text();
  if (!label.empty() && Accept(tok::kColon)) {
    TokenCode next = Peek();
    bool alone = next == tok::kEndOfLine || next == tok::kComment;
    line.push_back(std::make_unique<LabelStmt>(label, !alone));
    if (!alone) failed = !(stmt = ParseStatement(*this));
  } else {
    start.Rewind();
    if (Peek() != tok::kComment) failed = !(stmt = ParseStatement(*this));
  }
  if (failed) return false;
  TokenCode code = GetToken();
  if (code == tok::kComment) {
    if (stmt) line.push_back(std::move(stmt));
    line.push_back(std::make_unique<CommentStmt>(Text()));
    code = GetToken();
  } else if (stmt) {
    line.push_back(std::move(stmt));
  }
  if (code != tok::kEndOfLine) {
    SetParseError(err::kTrailingChars);
    return false;
  }
  return true;
}

std::vector<StatementPtr> Program::ParseLine() {
  std::vector<StatementPtr> line;
  bool classic = ReadClassicWords();
  std::string_view raw = RawAfterCurrent();
  Reference* lastRef = References().Last();
  ParseAttempt whole(*this);
  TokenCode code = GetToken();
  if (code == tok::kEndOfLine) {
    SetParseError(err::kEndOfLine);
    return line;
  }
  if (code == tok::kSemicolon && GetToken() == tok::kEndOfLine) {
    line.push_back(std::make_unique<BlankLineStmt>());
    return line;
  }
  whole.Rewind();
  bool failed = !ParseStatements(line);
  if (failed && classic && !HoldsOverlongWord(raw)) {
    // Keywords run into names come first; a line that fails that way may
    // still be one of this dialect's own, with long names and labels.
    ErrorCode classicError = g_err.parse;
    line.clear();
    ReadOrdinaryWords();
    SetParseError(0);
    failed = !ParseStatements(line);
    if (failed) SetParseError(classicError);
  }
  if (failed) {
    line.clear();
    // "REMARKS: ..." fails as a label and a statement; old listings mean a remark.
    whole.Rewind();
    if (StatementPtr remark = ParseRemWord(*this)) {
      SetParseError(0);
      line.push_back(std::move(remark));
      return line;
    }
    ErrorCode error = g_err.parse > err::kEndOfLine ? g_err.parse : err::kBadLine;
    SetParseError(error);
    line.push_back(std::make_unique<InvalidStmt>(raw, error));
    return line;
  }
  for (Reference* r = lastRef ? lastRef->Next() : References().First(); r; r = r->Next())
    r->owner = line.size() > 1 && line.front()->Label() ? line[1].get() : line.front().get();
  for (size_t i = 0; i < line.size(); ++i) {
    if (i + 1 < line.size()) line[i]->SetFlags(loc::kFollowed);
    if (i > 0) line[i]->SetFlags(loc::kHidden | loc::kTrailing);
  }
  return line;
}

int Program::ListLine(std::string& out, const Statement* s, int indentWidth, int depth,
                      bool withNumber) const {
  int kind = s->IndentClass();
  if (withNumber) {
    Appendf(out, "%5u ", s->Number());
    if (indentWidth != 0 && kind != Statement::kMargin) out += "  ";
  } else if (kind != Statement::kMargin) {
    out += '\t';
  }
  auto indent = [&](int units) {
    for (int i = 0; i < units; ++i) {
      if (indentWidth == 0)
        out += '\t';
      else
        out.append(static_cast<size_t>(indentWidth), ' ');
    }
  };
  switch (kind) {
    case Statement::kOpens:
      indent(depth++);
      break;
    case Statement::kCloses:
      if (depth > 0) --depth;
      indent(depth);
      break;
    case Statement::kMiddle:
      indent(depth > 0 ? depth - 1 : 0);
      break;
    case Statement::kMargin:
      break;
    default:
      indent(depth);
      break;
  }
  s->List(out);
  while (s->Followed() && s->Next()) {
    s = s->Next();
    out += ' ';
    s->List(out);
    if (s->IndentClass() == Statement::kOpens) ++depth;
    if (s->IndentClass() == Statement::kCloses && depth > 0) --depth;
  }
  return depth;
}

std::string Program::LineText(const Statement* head) {
  std::string text = std::to_string(head->Number());
  text += ' ';
  head->List(text);
  for (const Statement* s = head; s->Followed() && s->Next();) {
    s = s->Next();
    text += ' ';
    s->List(text);
  }
  return text;
}

// Gives numbers to the unnumbered statements of a loaded program, stepping by
// 10, 5 or less as the gap to the next numbered statement allows; when the gap
// is too small, the statements after the run move up, their references with them.
bool Program::NumberUnnumbered(uint32_t after) {
  bool renumbered = false;
  uint32_t prev = after;
  Statement* s = First();
  while (s && s != endMark_) {
    if (s->Hidden()) {
      s = s->Next();
      continue;
    }
    if (s->Number() != 0) {
      prev = s->Number();
      s = s->Next();
      continue;
    }
    // A run of unnumbered lines: count them and find the numbered line after.
    std::vector<Statement*> unnumbered;
    Statement* t = s;
    for (; t && t != endMark_; t = t->Next()) {
      if (t->Hidden()) continue;
      if (t->Number() != 0) break;
      unnumbered.push_back(t);
    }
    Statement* following = t != endMark_ ? t : nullptr;
    uint64_t count = unnumbered.size();
    int64_t gap = following ? int64_t{following->Number()} - prev - 1 : 999998 - int64_t{prev};
    if (gap >= static_cast<int64_t>(count)) {
      uint64_t step = static_cast<uint64_t>(gap) / count;
      if (step > 10)
        step = 10;
      else if (step >= 6)
        step = 5;  // a quotient of exactly 10 gives 5 too
      for (Statement* r : unnumbered) r->SetNumber(prev += static_cast<uint32_t>(step));
    } else {
      for (Statement* r : unnumbered) r->SetNumber(prev += 10);
      // Move the following statements up only as far as needed. The last one
      // moves first, so a reference never lands on a number still to be moved.
      std::vector<std::pair<Statement*, uint32_t>> moves;
      uint32_t n = prev;
      for (Statement* f = following; f && f != endMark_; f = f->Next()) {
        if (f->Hidden()) continue;
        if (f->Number() == 0 || f->Number() > n) break;
        n += 10;
        moves.emplace_back(f, n);
      }
      for (auto it = moves.rbegin(); it != moves.rend(); ++it) {
        if (TargetLabel* target = FindTarget(it->first->Number())) {
          std::pair<TargetLabel*, uint32_t> move(target, it->second);
          targets.Renumber({&move, 1});
        }
        it->first->SetNumber(it->second);
      }
      renumbered = true;
    }
    s = t;
  }
  if (PullBelowLimit()) renumbered = true;
  lines_.clear();
  for (Statement* h = First(); h; h = h->Next()) Index(h);
  return renumbered;
}

// Lines numbered past 999999 (unnumbered lines after the last numbers) take the
// highest numbers below it; only as many lines before them move down as needed,
// their references with them, so that SAVE writes a file GET takes back.
bool Program::PullBelowLimit() {
  Statement* s = endMark_->Prev();
  while (s && s->Hidden()) s = s->Prev();
  if (!s || s->Number() <= kMaxNumber) return false;
  std::vector<std::pair<TargetLabel*, uint32_t>> moves;
  for (uint32_t n = kMaxNumber; s && n > 0 && s->Number() > n; --n) {
    if (TargetLabel* target = FindTarget(s->Number())) moves.emplace_back(target, n);
    s->SetNumber(n);
    do s = s->Prev();
    while (s && s->Hidden());
  }
  targets.Renumber(moves);
  return true;
}

void Program::Renumber(std::span<const std::pair<Statement*, uint32_t>> lines) {
  std::vector<std::pair<TargetLabel*, uint32_t>> moves;
  for (const auto& [head, number] : lines) {
    if (TargetLabel* target = FindTarget(head->Number())) moves.emplace_back(target, number);
    Unindex(head);
  }
  targets.Renumber(moves);
  for (const auto& [head, number] : lines) {
    head->SetNumber(number);
    Index(head);
  }
  linksCurrent_ = false;
  ++edits_;
}

// --- Storage and the requests of statements and expressions.

void Program::ClearStorage() {
  variables.Clear();
  run.data = DataReader{};
  files_.CloseAll();
  run.StartFrame();
  run.resume = nullptr;  // a new run or a failed link: nothing stopped goes on
  matrix_ = MatrixWork{};
  common.clear();
  chained.reset();
  // DEF statements register again and call sites size the stacks again at each link.
  functions.clear();
  calls.Clear();
}

StatementPtr Program::ParseAfterThen() { return ParseStatementAfterThen(*this); }

NumericExpPtr Program::FileFunction(const KeyToken* key, NumericExpPtr arg) {
  return MakeFileFunction(key, std::move(arg), files_, run.data);
}
