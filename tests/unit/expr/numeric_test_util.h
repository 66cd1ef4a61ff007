// Helpers for tests that parse numeric expressions into a scratch program.
#pragma once
#include <string>

#include "expr/numeric_exp.h"
#include "program/program.h"
#include "test_program.h"

namespace numeric_test {

// Parses line as a numeric expression, with the parse error cleared first.
inline NumericExpPtr Parse(Program& prog, const char* line) {
  SetParseError(0);
  prog.StartLine(line);
  return ParseNumericExp(prog);
}

inline std::string ListOf(const NumericExp& e) {
  std::string out;
  e.List(out);
  return out;
}

// Binds every variable reference as the link pass would; the first failure.
inline ErrorCode LinkAll(Program& prog) { return test_program::LinkReferences(prog); }

// Evaluates with the run-time error cleared first.
inline float Run(NumericExp& e) {
  SetRunError(0);
  return e.Evaluate();
}

}  // namespace numeric_test
