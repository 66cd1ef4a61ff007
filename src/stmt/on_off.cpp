// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseOn(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseOff(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
