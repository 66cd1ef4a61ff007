// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseFor(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseNext(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
