// Placeholder until this statement family lands.
#include "shell/program.h"
#include "stmt/parsers.h"

StatementPtr ParseDim(Program&) {
  SetParseError(kNotSupported);
  return nullptr;
}
