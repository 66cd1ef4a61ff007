// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseSelect(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseCase(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseEndSelect(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
