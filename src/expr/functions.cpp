// Placeholder until the built-in functions land.
#include "expr/random.h"
#include "expr/string_exp.h"
#include "shell/program.h"

NumericExpPtr ParseNumericFunction(Program&) {
  SetParseError(35);
  return nullptr;
}
StringExpPtr ParseStringFunction(Program&) {
  SetParseError(36);
  return nullptr;
}
void ReseedRandom() {}
