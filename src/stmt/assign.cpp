// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseLet(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseImpliedLet(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
