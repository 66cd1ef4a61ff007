// The program as its statements see it: what its expressions see, the run
// state, the statement references and the COM list; and the two requests that
// only the program can answer, since they reach every statement family and the
// loader: the statement after THEN, and CHAIN.
#pragma once
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "expr/expr_context.h"
#include "stmt/run_state.h"
#include "stmt/statement.h"
#include "stmt/target_labels.h"

// A COM variable. CHAIN hands the values of one program's list to the next by position.
using CommonEntry =
    std::variant<NumericSimpleData*, StringSimpleData*, NumericScriptData*, StringScriptData*>;

// Where a chained program starts: the statement of a number, else of a label,
// else its first statement.
struct ChainStart {
  uint32_t number = 0;
  std::string label;
};

class StmtContext : public ExprContext {
 public:
  RunState run;
  TargetTable targets;
  std::vector<CommonEntry> common;  // the COM variables in program order, made by the link

  // The statement after THEN, through the statement table; null with the
  // parse error set when it fails or is of a kind that may not stand there.
  virtual StatementPtr ParseAfterThen() = 0;
  // Loads the program file at path, links it and hands it the COM values; it
  // takes over the run once the CHAIN statement returns. 0, or the code of the
  // failure; *linkError is set when the new program failed to link, its error
  // raised and located in it. With report, bad lines are announced as GET does.
  virtual ErrorCode Chain(const std::string& path, const ChainStart& start, bool report,
                          bool* linkError) = 0;

 protected:
  StmtContext() = default;
  ~StmtContext() = default;
};
