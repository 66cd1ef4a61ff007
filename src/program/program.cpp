#include "program/program.h"

#include <algorithm>

#include "expr/numeric_exp.h"
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/simple_stmts.h"

void TargetLabel::List(std::string& out) const {
  if (IsName()) {
    out += name_;
    out += ':';
  } else {
    out += std::to_string(number_);
  }
}

Program::Program(std::string name) : name_(std::move(name)) {
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
  // DEF statements own what this table points to; the next link rebuilds it.
  functions.clear();
}

// --- Parsing and listing.

std::vector<StatementPtr> Program::ParseLine() {
  std::vector<StatementPtr> line;
  std::string_view raw = RawAfterCurrent();
  Reference* lastRef = references_.Last();
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
  StatementPtr stmt;
  bool failed = false;
  // A leading label: a plain word and ":".
  std::string label;
  if (tok::Category(GetToken()) == tok::kNumVar && Symbol()) label = Text();
  if (!label.empty() && Accept(tok::kColon)) {
    TokenCode next = Peek();
    bool alone = next == tok::kEndOfLine || next == tok::kComment;
    line.push_back(std::make_unique<LabelStmt>(label, !alone));
    if (!alone) failed = !(stmt = ParseStatement(*this));
  } else {
    whole.Rewind();
    if (Peek() != tok::kComment) failed = !(stmt = ParseStatement(*this));
  }
  if (!failed) {
    code = GetToken();
    if (code == tok::kComment) {
      if (stmt) line.push_back(std::move(stmt));
      line.push_back(std::make_unique<CommentStmt>(Text()));
      code = GetToken();
    } else if (stmt) {
      line.push_back(std::move(stmt));
    }
    if (code != tok::kEndOfLine) {
      SetParseError(err::kTrailingChars);
      failed = true;
    }
  }
  if (failed) {
    line.clear();
    stmt.reset();
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
  for (Reference* r = lastRef ? lastRef->Next() : references_.First(); r; r = r->Next())
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

// --- Statement references.

TargetRef& TargetRef::operator=(TargetRef&& other) noexcept {
  if (this != &other) {
    if (target_) prog_->Release(target_);
    prog_ = other.prog_;
    target_ = other.target_;
    other.target_ = nullptr;
  }
  return *this;
}

TargetRef::~TargetRef() {
  if (target_) prog_->Release(target_);
}

Statement* TargetRef::Landing() const {
  Statement* s = target_->resolved;
  return s && !s->IsExecutable() ? s->NextExecutable() : s;
}

TargetRef ParseTarget(Program& p) {
  ParseAttempt attempt(p);
  TokenCode code = p.GetToken();
  if (code == tok::kInteger) {
    uint64_t value = 0;
    for (char c : p.Text()) value = std::min<uint64_t>(value * 10 + (c - '0'), 1000000);
    if (value >= 1 && value <= 999999)
      return TargetRef(p, p.ReferNumber(static_cast<uint32_t>(value)));
  } else if (tok::Category(code) == tok::kNumVar && code >= tok::kFirstCoded && p.Symbol()) {
    std::string name(p.Text());
    p.Accept(tok::kColon);
    return TargetRef(p, p.ReferName(name));
  }
  attempt.Rewind();
  return TargetRef();
}

TargetRef ParseThenTarget(Program& p) {
  ParseAttempt attempt(p);
  if (!p.Accept(tok::kThen)) {
    attempt.Replace(err::kMissingDelimiter);
    return TargetRef();
  }
  TargetRef target = ParseTarget(p);
  if (!target) attempt.Replace(err::kBadStmtNumber);
  return target;
}

namespace {
std::string NameKey(std::string_view name) {
  std::string key(name);
  for (char& c : key)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return key;
}
}  // namespace

TargetLabel* Program::FindTarget(uint32_t number) const {
  auto it = numberTargets_.find(number);
  return number != 0 && it != numberTargets_.end() ? it->second : nullptr;
}

TargetLabel* Program::FindTarget(std::string_view name) const {
  auto it = nameTargets_.find(NameKey(name));
  return it != nameTargets_.end() ? it->second : nullptr;
}

TargetLabel* Program::ReferNumber(uint32_t number) {
  TargetLabel*& target = numberTargets_[number];
  if (!target) {
    targets_.push_back(std::make_unique<TargetLabel>(number, ""));
    target = targets_.back().get();
  }
  ++target->users;
  return target;
}

TargetLabel* Program::ReferName(std::string_view name) {
  TargetLabel*& target = nameTargets_[NameKey(name)];
  if (!target) {
    targets_.push_back(std::make_unique<TargetLabel>(0, std::string(name)));
    target = targets_.back().get();
  }
  ++target->users;
  return target;
}

// A target nobody refers to leaves the indexes at once and the table in
// batches, so that deleting many jumps stays linear.
void Program::Release(TargetLabel* target) {
  if (!target || --target->users > 0) return;
  if (target->IsName()) {
    auto it = nameTargets_.find(NameKey(target->Name()));
    if (it != nameTargets_.end() && it->second == target) nameTargets_.erase(it);
  } else {
    auto it = numberTargets_.find(target->Number());
    if (it != numberTargets_.end() && it->second == target) numberTargets_.erase(it);
  }
  if (++deadTargets_ > 64 && deadTargets_ * 2 > targets_.size()) {
    std::erase_if(targets_, [](const auto& t) { return t->users == 0; });
    deadTargets_ = 0;
  }
}

// Gives numbers to the unnumbered statements of a loaded program, stepping by
// 10, 5 or less as the gap to the next numbered statement allows; when the gap
// is too small, the statements after the run move up, their references with them.
bool Program::NumberUnnumbered() {
  bool renumbered = false;
  uint32_t prev = 0;
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
          numberTargets_.erase(target->Number());
          target->SetNumber(it->second);
          numberTargets_[it->second] = target;
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
  // Every old number leaves the index before a new one enters: they may overlap.
  for (const auto& [target, n] : moves) numberTargets_.erase(target->Number());
  for (const auto& [target, n] : moves) {
    target->SetNumber(n);
    numberTargets_[n] = target;
  }
  return true;
}

// --- Storage.

void Program::ClearStorage() {
  numSimple_.clear();
  numArrays_.clear();
  strSimple_.clear();
  strArrays_.clear();
  run.data = DataReader{};
  run.files.CloseAll();
  run.frame = RunFrame{};
  run.matrix = MatrixWork{};
  common.clear();
  chained.reset();
  // DEF statements register again and call sites size the stacks again at each link.
  functions.clear();
  run.calls.Clear();
}

namespace {
template <typename T>
std::unique_ptr<T>& Slot(std::vector<std::unique_ptr<T>>& heap, const VarToken* name) {
  unsigned ordinal = name->Ordinal();
  if (heap.size() <= ordinal) heap.resize(ordinal + 1);
  return heap[ordinal];
}
}  // namespace

NumericSimpleData* Program::NumericSimple(const VarToken* name) {
  auto& slot = Slot(numSimple_, name);
  if (!slot) slot = std::make_unique<NumericSimpleData>(NumericSimpleData{name});
  return slot.get();
}

std::unique_ptr<NumericScriptData>& Program::NumericArray(const VarToken* name) {
  return Slot(numArrays_, name);
}

StringSimpleData* Program::StringSimple(const VarToken* name) {
  auto& slot = Slot(strSimple_, name);
  if (!slot) slot = std::make_unique<StringSimpleData>(StringSimpleData{name, StringValue()});
  return slot.get();
}

NumericSimpleData* Program::FindNumericSimple(const VarToken* name) const {
  unsigned ordinal = name->Ordinal();
  return ordinal < numSimple_.size() ? numSimple_[ordinal].get() : nullptr;
}

StringSimpleData* Program::FindStringSimple(const VarToken* name) const {
  unsigned ordinal = name->Ordinal();
  return ordinal < strSimple_.size() ? strSimple_[ordinal].get() : nullptr;
}

std::unique_ptr<StringScriptData>& Program::StringArray(const VarToken* name) {
  return Slot(strArrays_, name);
}

size_t Program::HeapSize() const {
  size_t size = 0;
  for (const auto& d : numSimple_)
    if (d) size += sizeof *d;
  for (const auto& d : numArrays_)
    if (d) size += sizeof *d + d->capacity * sizeof(float);
  for (const auto& d : strSimple_)
    if (d) size += sizeof *d + d->value.Capacity();
  for (const auto& d : strArrays_)
    if (d) {
      size += sizeof *d;
      for (uint32_t i = 0; i < d->capacity; ++i)
        size += sizeof(StringValue) + d->elements[i].Capacity();
    }
  return size;
}
