// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseInput(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
