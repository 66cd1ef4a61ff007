#include "stmt/simple_stmts.h"

#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

StatementPtr ParseRem(StmtContext& p) {
  std::string_view rest = p.RestOfLine();
  while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
  return std::make_unique<RemStmt>(rest);
}
