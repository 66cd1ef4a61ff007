// RANDOMIZE and RANDOM: seed RND from the clock, or from a value so that a
// run can repeat its numbers.
#include "expr/random.h"
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class RandomizeStmt final : public Statement {
 public:
  RandomizeStmt(bool older, NumericExpPtr seed) : older_(older), seed_(std::move(seed)) {}
  Statement* Execute() override {
    if (!seed_) {
      SeedRandomFromClock();
      return successor_;
    }
    float x = seed_->Evaluate();
    if (g_err.run) return successor_;
    SeedRandom(x);
    return successor_;
  }
  TokenCode Code() const override { return tok::kRandomize; }
  size_t Size() const override { return sizeof *this + (seed_ ? seed_->Size() : 0); }
  // Each spelling lists as it was written.
  void List(std::string& out) const override {
    out += older_ ? "RANDOM" : "RANDOMIZE";
    if (!seed_) return;
    out += ' ';
    seed_->List(out);
  }

 private:
  bool older_;
  NumericExpPtr seed_;  // null: from the clock
};

}  // namespace

StatementPtr ParseRandomize(StmtContext& p) {
  bool older = p.Text().size() == 6;  // RANDOM
  TokenCode next = p.Peek();
  if (next == tok::kEndOfLine || next == tok::kComment)
    return std::make_unique<RandomizeStmt>(older, nullptr);
  ParseAttempt attempt(p);
  NumericExpPtr seed = ParseNumericExp(p);
  if (!seed) return attempt.Fail(err::kBadNumericExp);
  return std::make_unique<RandomizeStmt>(older, std::move(seed));
}
