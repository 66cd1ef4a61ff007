// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseWhile(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseEndWhile(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseRepeat(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
StatementPtr ParseUntil(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
