// The program as its expressions see it: the tokens and symbols they are
// parsed from, the references the link pass binds, the variables and user
// functions those bind to, and the frames of the calls that run. The program
// is one; expressions never see the rest of it.
#pragma once
#include <vector>

#include "base/base_list.h"
#include "expr/call_frames.h"
#include "expr/numeric_exp.h"
#include "expr/variables.h"
#include "lex/tokenizer.h"
#include "value/variable_store.h"

class FuncSpec;
class KeyToken;

class ExprContext : public Tokenizer {
 public:
  BaseList_T<Reference, false>& References() { return references_; }

  VariableStore variables;
  std::vector<FuncSpec*> functions;       // registered by DEF statements at link
  const ParameterList* params = nullptr;  // while a DEF body is parsed
  CallFrames calls;                       // parameters of the active DEF calls

  // TYP, REC and ITM read the DATA position and the data files, which live on
  // floors above this one: the program makes their nodes.
  virtual NumericExpPtr FileFunction(const KeyToken* key, NumericExpPtr arg) = 0;

 protected:
  ExprContext() = default;
  ~ExprContext() = default;

 private:
  BaseList_T<Reference, false> references_;
};
