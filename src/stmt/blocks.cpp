#include "stmt/blocks.h"

#include <array>

#include "stmt/stmt_context.h"

namespace {

// The failure of the search under way. Searches run one at a time on the
// main thread, and each opener takes the failure of its own search.
struct PendingError {
  ErrorCode code = 0;
  uint32_t location = 0;
} g_pending;

}  // namespace

SearchAnswer FailSearch(ErrorCode code, uint32_t location) {
  if (!g_pending.code) g_pending = {code, location};
  return {SearchAnswer::kFail};
}

bool SearchFailed() { return g_pending.code != 0; }

namespace {

using namespace err;
constexpr ErrorCode kPass = 0;               // not mine: ask the next statement
constexpr ErrorCode kEnds = ~ErrorCode{0};   // the partner the search looks for
using AnswerRow = std::array<ErrorCode, 9>;  // a closer's answer to each search

// Rows in the order of Closer; columns in the order of Search: NEXT, ELSE or
// ENDIF, ENDIF, WHILE's end, UNTIL, first numeric CASE, next numeric CASE,
// first string CASE, next string CASE. Reordering either enum reorders this
// table: change them together.
constexpr AnswerRow kAnswers[] = {
    // NEXT var
    {kEnds, kPass, kNextAfterIf, kNextForAfterWhile, kNextAfterRepeat, kNextAfterSelect,
     kNextAfterSelect, kNextAfterSelect, kNextAfterSelect},
    // NEXT alone, ENDWHILE
    {kNextWhileAfterFor, kPass, kNextAfterIf, kEnds, kNextAfterRepeat, kNextAfterSelect,
     kNextAfterSelect, kNextAfterSelect, kNextAfterSelect},
    // UNTIL
    {kUntilAfterFor, kPass, kUntilAfterIf, kUntilAfterWhile, kEnds, kUntilAfterSelect,
     kUntilAfterSelect, kUntilAfterSelect, kUntilAfterSelect},
    // ELSE
    {kElseAfterFor, kEnds, kElseWithoutIf, kElseAfterWhile, kElseAfterRepeat, kElseAfterSelect,
     kElseAfterSelect, kElseAfterSelect, kElseAfterSelect},
    // ENDIF
    {kEndIfAfterFor, kEnds, kEnds, kEndIfAfterWhile, kEndIfAfterRepeat, kEndIfAfterSelect,
     kEndIfAfterSelect, kEndIfAfterSelect, kEndIfAfterSelect},
    // numeric CASE
    {kCaseAfterFor, kCaseAfterIf, kCaseAfterIf, kCaseAfterWhile, kCaseAfterRepeat, kEnds, kEnds,
     kCaseNotString, kCaseNotString},
    // string CASE
    {kCaseAfterFor, kCaseAfterIf, kCaseAfterIf, kCaseAfterWhile, kCaseAfterRepeat, kCaseNotNumeric,
     kCaseNotNumeric, kEnds, kEnds},
    // CASE ELSE
    {kCaseAfterFor, kCaseAfterIf, kCaseAfterIf, kCaseAfterWhile, kCaseAfterRepeat, kEnds, kEnds,
     kEnds, kEnds},
    // ENDSELECT
    {kEndSelectAfterFor, kPass, kEndSelectAfterIf, kEndSelectAfterWhile, kEndSelectAfterRepeat,
     kSelectWithoutCase, kEnds, kSelectWithoutCase, kEnds},
};
static_assert(std::size(kAnswers) == static_cast<size_t>(Closer::kEndSelect) + 1);
static_assert(std::tuple_size_v<AnswerRow> == static_cast<size_t>(Search::kNextStringCase) + 1);

}  // namespace

SearchAnswer AnswerAs(Closer closer, Search search, Statement* self) {
  ErrorCode code = kAnswers[static_cast<size_t>(closer)][static_cast<size_t>(search)];
  if (code == kEnds) return {SearchAnswer::kFound, self};
  if (code != kPass) return FailSearch(code, self->Location());
  return {SearchAnswer::kPass};
}

ErrorCode BlockOpener::Resolve(StmtContext&) {
  state_ = State::kUnknown;
  closer_ = nullptr;
  ClearLinks();
  return 0;
}

bool BlockOpener::Match() {
  if (state_ != State::kUnknown) return state_ == State::kMatched;
  g_pending = {};
  closer_ = FindCloser();
  if (closer_) {
    state_ = State::kMatched;
    return true;
  }
  state_ = State::kFailed;
  if (g_pending.code) {
    failCode_ = g_pending.code;
    failLocation_ = g_pending.location;
  } else {
    failCode_ = UnmatchedCode();
    failLocation_ = Location();
  }
  g_pending = {};
  return false;
}

SearchAnswer BlockOpener::Answer(Search, Statement*) {
  if (!Match()) return FailSearch(failCode_, failLocation_);
  return {SearchAnswer::kSkip, closer_->Next()};
}

ErrorCode BlockOpener::Check(StmtContext&) {
  if (state_ == State::kUnknown) {
    // Openers are matched last to first, so every inner block is settled
    // before the block around it searches: no search ever recurses.
    Statement* last = this;
    while (Statement* next = last->Next()) last = next;
    for (Statement* s = last; s && s != this; s = s->Prev())
      if (auto* opener = dynamic_cast<BlockOpener*>(s)) opener->Match();
    Match();
  }
  if (state_ == State::kMatched) return 0;
  g_err.location = failLocation_;
  return failCode_;
}
