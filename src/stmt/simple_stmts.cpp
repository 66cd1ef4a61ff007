#include "stmt/simple_stmts.h"

#include "program/program.h"
#include "stmt/parsers.h"

StatementPtr ParseRem(Program& p) {
  std::string_view rest = p.RestOfLine();
  while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
  return std::make_unique<RemStmt>(rest);
}
