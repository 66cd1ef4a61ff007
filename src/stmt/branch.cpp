// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseGoto(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseGosub(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseReturn(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseRestoreOf(Program&, NumericExpPtr) {
  SetParseError(kNotSupported);
  return nullptr;
}
