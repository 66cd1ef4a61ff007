#include "stmt/statement.h"

#include "expr/numeric_exp.h"

Statement* Statement::NextExecutable() const {
  Statement* s = Next();
  while (s && !s->IsExecutable()) s = s->Next();
  return s;
}

void Statement::SetNumber(uint32_t number) {
  for (Statement* s = this; s; s = s->Next()) {
    s->location_ =
        (s->location_ & (loc::kFlags & ~loc::kFileLine)) | loc::kStmtNumber | (number << 8);
    if (!s->Followed()) break;
  }
}

void Statement::SetFileLine(uint32_t line) {
  for (Statement* s = this; s; s = s->Next()) {
    s->location_ =
        (s->location_ & (loc::kFlags & ~loc::kStmtNumber)) | loc::kFileLine | (line << 8);
    if (!s->Followed()) break;
  }
}

void DumpLink(std::string& out, const Statement* stmt) {
  if (stmt)
    Appendf(out, "%u  ", stmt->Number());
  else
    out += "<nullptr>";
}

void Statement::Dump(std::string& out) const {
  Appendf(out, "%c%c%c<", IsCode() ? 'C' : 'R', IsExecutable() ? 'E' : 'N', IsBlock() ? 'X' : 'S');
  DumpLink(out, successor_);
  out += "> ";
  List(out);
}

Statement* Statement::SearchAfter(Search search, Statement* asker) {
  Statement* s = Next();
  while (s) {
    SearchAnswer answer = s->Answer(search, asker);
    switch (answer.kind) {
      case SearchAnswer::kPass:
        s = s->Next();
        break;
      case SearchAnswer::kFound:
        return answer.stmt;
      case SearchAnswer::kFail:
        return nullptr;
      case SearchAnswer::kSkip:
        s = answer.stmt;
        break;
    }
  }
  return nullptr;
}

bool Statement::RestoreHere() {
  for (Statement* s = this; s; s = s->Next())
    if (s->AcceptsRestore()) return true;
  return false;
}
