// SELECT ... CASE ... ENDSELECT over a numeric or a string selector.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "base/convert.h"
#include "lex/parse_attempt.h"
#include "stmt/blocks.h"
#include "stmt/case_items.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class EndSelectStmt;

// The CASE statements share their chain links; the SELECT walks the chain.
class CaseStmt : public Statement {
 public:
  // Reached in sequence: the previous body has ended, leave the SELECT.
  Statement* Execute() override { return exit_; }
  TokenCode Code() const override { return tok::kCase; }
  int IndentClass() const override { return kMiddle; }
  ErrorCode Resolve(StmtContext&) override {
    matched_ = false;
    next_ = nullptr;
    exit_ = nullptr;
    return 0;
  }
  ErrorCode Check(StmtContext&) override { return matched_ ? 0 : err::kCaseWithoutSelect; }
  virtual bool Accepts(float selector) = 0;
  virtual bool Accepts(std::string_view selector) = 0;
  // True, with the least and greatest value accepted, when the items are
  // literals (CASE ELSE accepts all values and spans none).
  virtual bool Constant(float* low, float* high) const = 0;

  CaseStmt* NextCase() const { return next_; }
  void Link(CaseStmt* next, Statement* exit) {
    matched_ = true;
    next_ = next;
    exit_ = exit;
  }

 private:
  bool matched_ = false;
  CaseStmt* next_ = nullptr;   // none for the last CASE
  Statement* exit_ = nullptr;  // after the ENDSELECT
};

class CaseNumericStmt final : public CaseStmt {
 public:
  explicit CaseNumericStmt(std::vector<NumericCasePtr> items) : items_(std::move(items)) {}
  size_t Size() const override { return sizeof *this + ItemsSize(items_); }
  void List(std::string& out) const override {
    out += "CASE ";
    ListItems(out, items_);
  }
  SearchAnswer Answer(Search search, Statement*) override {
    return AnswerAs(Closer::kCaseNumber, search, this);
  }
  bool Accepts(float selector) override { return AnyMatches(items_, selector); }
  bool Accepts(std::string_view) override { return false; }
  bool Constant(float* low, float* high) const override {
    *low = INFINITY;
    *high = -INFINITY;
    for (const auto& item : items_) {
      float l, h;
      if (!item->Constant(&l, &h)) return false;
      *low = std::min(*low, l);
      *high = std::max(*high, h);
    }
    return true;
  }

 private:
  std::vector<NumericCasePtr> items_;
};

class CaseStringStmt final : public CaseStmt {
 public:
  explicit CaseStringStmt(std::vector<StringCasePtr> items) : items_(std::move(items)) {}
  size_t Size() const override { return sizeof *this + ItemsSize(items_); }
  void List(std::string& out) const override {
    out += "CASE ";
    ListItems(out, items_);
  }
  SearchAnswer Answer(Search search, Statement*) override {
    return AnswerAs(Closer::kCaseString, search, this);
  }
  bool Accepts(float) override { return false; }
  bool Accepts(std::string_view selector) override { return AnyMatches(items_, selector); }
  bool Constant(float*, float*) const override { return false; }

 private:
  std::vector<StringCasePtr> items_;
};

class CaseElseStmt final : public CaseStmt {
 public:
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "CASE ELSE"; }
  SearchAnswer Answer(Search search, Statement*) override {
    return AnswerAs(Closer::kCaseElse, search, this);
  }
  bool Accepts(float) override { return true; }
  bool Accepts(std::string_view) override { return true; }
  bool Constant(float* low, float* high) const override {
    *low = INFINITY;
    *high = -INFINITY;
    return true;
  }
};

class EndSelectStmt final : public Statement {
 public:
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kEndIf; }  // shares the ENDIF code
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "ENDSELECT"; }
  void Dump(std::string& out) const override {
    Statement::Dump(out);
    out += " Case: ";
    DumpLink(out, last_);
  }
  int IndentClass() const override { return kCloses; }
  bool IsExecutable() const override { return false; }
  bool IsBlock() const override { return true; }
  ErrorCode Resolve(StmtContext&) override {
    last_ = nullptr;
    return 0;
  }
  ErrorCode Check(StmtContext&) override { return last_ ? 0 : err::kEndSelectWithoutSelect; }
  SearchAnswer Answer(Search search, Statement*) override {
    return AnswerAs(Closer::kEndSelect, search, this);
  }
  void Bind(CaseStmt* last) { last_ = last; }

 private:
  CaseStmt* last_ = nullptr;
};

// The matching shared by both selector types: the CASE chain is walked in a
// loop, so a SELECT with many CASEs costs no native stack.
class SelectStmt : public BlockOpener {
 public:
  TokenCode Code() const override { return tok::kSelect; }
  void Dump(std::string& out) const override {
    Statement::Dump(out);
    out += " Case: ";
    DumpLink(out, first_);
  }

 protected:
  explicit SelectStmt(bool numeric) : numeric_(numeric) {}
  // The body of the first CASE that accepts the selector, else the exit.
  template <typename Value>
  Statement* Choose(Value selector) {
    for (CaseStmt* c = first_; c; c = c->NextCase())
      if (c->Accepts(selector)) return c->Successor();
    return exit_;
  }

  Statement* FindCloser() override {
    Statement* found =
        SearchAfter(numeric_ ? Search::kFirstNumericCase : Search::kFirstStringCase, this);
    if (!found) return nullptr;
    Search follower = numeric_ ? Search::kNextNumericCase : Search::kNextStringCase;
    std::vector<CaseStmt*> chain{static_cast<CaseStmt*>(found)};
    EndSelectStmt* end = nullptr;
    while (!end) {
      CaseStmt* last = chain.back();
      found = last->SearchAfter(follower, last);
      if (!found) {
        FailSearch(err::kSelectWithoutEnd, Location());
        return nullptr;
      }
      if (auto* c = dynamic_cast<CaseStmt*>(found)) {
        if (dynamic_cast<CaseElseStmt*>(last)) {
          FailSearch(err::kCaseElseNotLast, last->Location());
          return nullptr;
        }
        chain.push_back(c);
      } else {
        end = static_cast<EndSelectStmt*>(found);
      }
    }
    exit_ = end->Successor();
    for (size_t i = 0; i < chain.size(); ++i)
      chain[i]->Link(i + 1 < chain.size() ? chain[i + 1] : nullptr, exit_);
    end->Bind(chain.back());
    first_ = chain.front();
    return end;
  }
  void ClearLinks() override {
    first_ = nullptr;
    exit_ = nullptr;
  }
  ErrorCode UnmatchedCode() const override { return err::kSelectWithoutEnd; }
  CaseStmt* FirstCase() const { return first_; }

 private:
  bool numeric_;
  CaseStmt* first_ = nullptr;
  Statement* exit_ = nullptr;  // after the ENDSELECT: no CASE accepted the selector
};

class SelectNumericStmt final : public SelectStmt {
 public:
  explicit SelectNumericStmt(NumericExpPtr selector)
      : SelectStmt(true), selector_(std::move(selector)) {}
  Statement* Execute() override {
    float value = selector_->Evaluate();
    if (g_err.run) return successor_;
    int32_t whole;
    if (!table_.empty() && conv::ExactInt32(value, &whole)) {
      // Below the first entry the difference wraps round past the table's end.
      uint32_t at = static_cast<uint32_t>(whole) - static_cast<uint32_t>(tableStart_);
      if (at < table_.size()) return table_[at];
    }
    return Choose(value);
  }
  size_t Size() const override {
    return sizeof *this + selector_->Size() + table_.capacity() * sizeof(Statement*);
  }
  void List(std::string& out) const override {
    out += "SELECT ";
    selector_->List(out);
  }

 protected:
  Statement* FindCloser() override {
    Statement* end = SelectStmt::FindCloser();
    if (end) MakeTable();
    return end;
  }
  void ClearLinks() override {
    SelectStmt::ClearLinks();
    table_.clear();
  }

 private:
  // The whole numbers up to this far apart get a table.
  static constexpr float kTableSpan = 256.0f;

  // When every CASE lists literals only, the choice for each whole number in
  // their span is made here, once: a run looks it up instead of walking the items.
  void MakeTable() {
    float low = INFINITY, high = -INFINITY;
    for (CaseStmt* c = FirstCase(); c; c = c->NextCase()) {
      float l, h;
      if (!c->Constant(&l, &h)) return;
      low = std::min(low, l);
      high = std::max(high, h);
    }
    low = std::ceil(low);
    high = std::floor(high);
    if (!(low <= high && high - low < kTableSpan && std::fabs(low) < 1e6f &&
          std::fabs(high) < 1e6f))
      return;
    tableStart_ = static_cast<int32_t>(low);
    for (int32_t v = tableStart_; v <= static_cast<int32_t>(high); ++v)
      table_.push_back(Choose(static_cast<float>(v)));
  }

  NumericExpPtr selector_;
  std::vector<Statement*> table_;  // the choice for tableStart_, tableStart_ + 1, ...
  int32_t tableStart_ = 0;
};

class SelectStringStmt final : public SelectStmt {
 public:
  explicit SelectStringStmt(StringExpPtr selector)
      : SelectStmt(false), selector_(std::move(selector)) {}
  Statement* Execute() override {
    std::string_view value = selector_->Evaluate(work_);
    if (g_err.run) return successor_;
    if (value.data() != work_.Data()) {
      // The items are evaluated while the selector is held.
      work_.Clear();
      work_.Append(value);
      value = work_.View();
    }
    return Choose(value);
  }
  size_t Size() const override { return sizeof *this + selector_->Size(); }
  void List(std::string& out) const override {
    out += "SELECT ";
    selector_->List(out);
  }

 private:
  StringExpPtr selector_;
  StringValue work_;
};

bool LineEnds(StmtContext& p) {
  TokenCode next = p.Peek();
  return next == tok::kEndOfLine || next == tok::kComment;
}

}  // namespace

StatementPtr ParseSelect(StmtContext& p) {
  ParseAttempt attempt(p);
  if (StringExpPtr text = ParseStringExp(p); text && LineEnds(p))
    return std::make_unique<SelectStringStmt>(std::move(text));
  // A string expression that goes on is a comparison: a numeric selector.
  attempt.Rewind();
  SetParseError(0);
  NumericExpPtr number = ParseNumericExp(p);
  if (!number) return attempt.Fail(err::kBadExpression);
  return std::make_unique<SelectNumericStmt>(std::move(number));
}

// The first item decides whether the CASE is numeric or string.
StatementPtr ParseCase(StmtContext& p) {
  if (p.Accept(tok::kElse)) return std::make_unique<CaseElseStmt>();
  ParseAttempt attempt(p);
  if (StartsStringCase(p)) {
    std::vector<StringCasePtr> items = ParseStringCases(p);
    if (!items.empty()) return std::make_unique<CaseStringStmt>(std::move(items));
  } else {
    std::vector<NumericCasePtr> items = ParseNumericCases(p);
    if (!items.empty()) return std::make_unique<CaseNumericStmt>(std::move(items));
  }
  return attempt.Fail();
}

StatementPtr ParseEndSelect(StmtContext&) { return std::make_unique<EndSelectStmt>(); }
