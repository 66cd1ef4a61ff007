// The statement base: every line of a program is one or more of these.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/base_list.h"
#include "base/errors.h"
#include "lex/token.h"

class ImageFormat;
class StmtContext;
class TargetLabel;
struct ChainStart;

// The block searches of the link pass; an opener asks the statements after it.
// The columns of the answer table in blocks.cpp follow this order.
enum class Search {
  kNext,              // a FOR looks for its NEXT
  kElseOrEndIf,       // a block IF looks for its ELSE or ENDIF
  kEndIf,             // an ELSE looks for its ENDIF
  kEndWhile,          // a WHILE looks for its NEXT or ENDWHILE
  kUntil,             // a REPEAT looks for its UNTIL
  kFirstNumericCase,  // a numeric SELECT looks for its first CASE
  kNextNumericCase,   // a numeric CASE looks for the CASE or ENDSELECT after it
  kFirstStringCase,
  kNextStringCase,
};

// How a statement answers a search that reaches it.
struct SearchAnswer {
  enum Kind {
    kPass,   // not mine: ask the next statement
    kFound,  // stmt is the partner
    kFail,   // the search ends without a partner (the error is already stored)
    kSkip,   // a nested block: go on asking from stmt
  };
  Kind kind;
  class Statement* stmt = nullptr;
};

class Statement : public BaseNode_T<Statement> {
 public:
  // Listing classes.
  static constexpr int kPlain = 0, kOpens = 1, kCloses = -1, kMiddle = -2, kMargin = 3;

  virtual ~Statement() = default;

  // Runs the statement and returns the statement to run next.
  virtual Statement* Execute() = 0;
  virtual TokenCode Code() const = 0;
  virtual size_t Size() const = 0;
  virtual void List(std::string& out) const = 0;
  virtual void Dump(std::string& out) const;
  virtual int IndentClass() const { return kPlain; }
  virtual bool IsCode() const { return true; }
  virtual bool IsExecutable() const { return true; }
  virtual bool IsBlock() const { return false; }
  // The name of the label a label statement defines, or null.
  virtual const char* Label() const { return nullptr; }
  // The first following statement that executes, or null.
  Statement* NextExecutable() const;
  virtual void SetSuccessor(Statement* next) { successor_ = next; }
  // First link operation: bind statement references; clear match links.
  virtual ErrorCode Resolve(StmtContext&) { return 0; }
  // Second link operation: block matching, placement rules, declarations.
  virtual ErrorCode Check(StmtContext&) { return 0; }
  // The error a bad line keeps.
  virtual ErrorCode ParseError() const { return 0; }
  // The format of an IMAGE statement, or null.
  virtual const ImageFormat* Image() const { return nullptr; }
  // How this statement answers a block search asked by `asker`.
  virtual SearchAnswer Answer(Search, Statement* /*asker*/) { return {SearchAnswer::kPass}; }
  // Asks the statements after this one, in a loop, until one answers; null
  // when the search ends without a partner or the program ends.
  Statement* SearchAfter(Search search, Statement* asker);
  // A DATA statement makes itself the current DATA position and says true.
  virtual bool AcceptsRestore() { return false; }
  // The first DATA statement at or after this one takes the DATA position.
  bool RestoreHere();
  // The statement references held, so that RENUMBER can name the lines whose
  // references lead nowhere.
  virtual void Targets(std::vector<const TargetLabel*>& /*out*/) const {}
  // A CHAIN to a file named by a literal: its start, which is no reference of
  // this program unless the file is the program's own; *file gets the name.
  virtual ChainStart* LiteralChain(std::string* /*file*/) { return nullptr; }

  Statement* Successor() const { return successor_; }
  uint32_t Location() const { return location_; }
  uint32_t Number() const { return (location_ & loc::kStmtNumber) ? loc::Number(location_) : 0; }
  bool Hidden() const { return location_ & loc::kHidden; }
  bool Followed() const { return location_ & loc::kFollowed; }
  void SetFlags(uint32_t flags) { location_ |= flags; }
  // Gives the number to this statement and to those that follow on its line.
  void SetNumber(uint32_t number);
  void SetFileLine(uint32_t line);

  // Raises a run-time error located at this statement; returns the successor.
  Statement* Fail(ErrorCode code) {
    Raise(code, location_);
    return successor_;
  }

 protected:
  Statement* successor_ = nullptr;  // the next statement to run, set by the link pass

 private:
  uint32_t location_ = 0;
};
using StatementPtr = std::unique_ptr<Statement>;

// Appends the successor's number as a dump shows it ("%u  " or "<nullptr>").
void DumpLink(std::string& out, const Statement* stmt);
