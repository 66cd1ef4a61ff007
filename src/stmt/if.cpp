// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseIf(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseElse(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseEndIf(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
