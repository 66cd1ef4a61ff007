// Placeholder until user functions land.
#include "expr/string_exp.h"
#include "shell/program.h"

NumericExpPtr ParseNumericUserCall(Program&) {
  SetParseError(64);
  return nullptr;
}
StringExpPtr ParseStringUserCall(Program&) {
  SetParseError(64);
  return nullptr;
}
