// Link-time block matching shared by FOR, WHILE, REPEAT, IF and SELECT.
#pragma once
#include <array>

#include "stmt/statement.h"

// The statements that end or divide a block, each a row of the answer table
// (blocks.cpp) that says how it answers every search that reaches it.
enum class Closer : uint8_t {
  kNextFor,    // NEXT with a variable
  kNextWhile,  // NEXT alone, ENDWHILE
  kUntil,
  kElse,
  kEndIf,
  kCaseNumber,  // CASE with numeric items
  kCaseString,  // CASE with string items
  kCaseElse,
  kEndSelect,
};

// The closer's answer to a search: found, passed on, or refused with its
// error located at self.
SearchAnswer AnswerAs(Closer closer, Search search, Statement* self);

// The error of the search under way; the first one stored wins.
SearchAnswer FailSearch(ErrorCode code, uint32_t location);
bool SearchFailed();

// A statement that opens a block. Each opener matches itself once per link;
// the outcome is kept, so an outer search skips a matched inner block in one
// step and every Check reports the same failure.
class BlockOpener : public Statement {
 public:
  int IndentClass() const override { return kOpens; }
  bool IsBlock() const override { return true; }
  ErrorCode Resolve(StmtContext&) override;
  ErrorCode Check(StmtContext& prog) override;
  // Met inside another block: skip past this one, or fail as this one failed.
  SearchAnswer Answer(Search, Statement*) override;
  // Runs this block's own search unless it ran during this link.
  bool Match();

 protected:
  // Searches for the closer and records the links; null when the search
  // fails (error stored or the program ended).
  virtual Statement* FindCloser() = 0;
  // Drops the links of the last link pass.
  virtual void ClearLinks() = 0;
  // The code reported when the program ends before the closer.
  virtual ErrorCode UnmatchedCode() const = 0;

 private:
  enum class State : uint8_t { kUnknown, kMatched, kFailed };
  State state_ = State::kUnknown;
  Statement* closer_ = nullptr;  // the statement that ends the whole block
  ErrorCode failCode_ = 0;
  uint32_t failLocation_ = 0;
};

// NEXT alone or ENDWHILE: the closer of a WHILE (while_repeat.cpp).
StatementPtr MakeNextWhile(bool endWhile);
