#include "stmt/blocks.h"

#include "shell/program.h"

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

SearchAnswer AnswerFrom(const AnswerRow& row, Search search, Statement* self) {
  ErrorCode code = row[static_cast<size_t>(search)];
  if (code == kEnds) return {SearchAnswer::kFound, self};
  if (code) return FailSearch(code, self->Location());
  return {SearchAnswer::kPass};
}

ErrorCode BlockOpener::Resolve(Program&) {
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

ErrorCode BlockOpener::Check(Program& prog) {
  if (state_ == State::kUnknown) {
    // Openers are matched last to first, so every inner block is settled
    // before the block around it searches: no search ever recurses.
    for (Statement* s = prog.EndMark(); s && s != this; s = s->Prev())
      if (auto* opener = dynamic_cast<BlockOpener*>(s)) opener->Match();
    Match();
  }
  if (state_ == State::kMatched) return 0;
  g_err.location = failLocation_;
  return failCode_;
}
