// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseOnEnd(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseOffEnd(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseRestore(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseData(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseRead(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
