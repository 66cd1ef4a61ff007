// CHAIN's side in the program: loads the file, links it, finds where it
// starts and hands it the COM variables by position; the run loop then
// carries on in it.
#include <variant>

#include "lex/keywords.h"
#include "platform/host_files.h"
#include "program/loader.h"
#include "program/program.h"
#include "program/run.h"

namespace {

// Two COM lists agree item by item, as far as both go: the same kind, and
// arrays with the same bounds.
bool Compatible(const CommonEntry& from, const CommonEntry& to) {
  if (from.index() != to.index()) return false;
  if (auto* a = std::get_if<NumericScriptData*>(&from))
    return (*a)->dims.Compatible(std::get<NumericScriptData*>(to)->dims) &&
           (*a)->count == std::get<NumericScriptData*>(to)->count;
  if (auto* a = std::get_if<StringScriptData*>(&from))
    return (*a)->dims.Compatible(std::get<StringScriptData*>(to)->dims) &&
           (*a)->count == std::get<StringScriptData*>(to)->count;
  return true;
}

// Moves each value into the new program's variable of the same place; strings
// and arrays change owners without a copy.
void HandOver(const CommonEntry& from, const CommonEntry& to) {
  if (auto* n = std::get_if<NumericSimpleData*>(&from))
    std::get<NumericSimpleData*>(to)->value = (*n)->value;
  else if (auto* s = std::get_if<StringSimpleData*>(&from))
    std::get<StringSimpleData*>(to)->value.Swap((*s)->value);
  else if (auto* a = std::get_if<NumericScriptData*>(&from))
    std::swap(std::get<NumericScriptData*>(to)->elements, (*a)->elements);
  else if (auto* b = std::get_if<StringScriptData*>(&from))
    std::swap(std::get<StringScriptData*>(to)->elements, (*b)->elements);
}

// The statement a start number or label names in a program, or null.
Statement* FindStart(Program& prog, const ChainStart& start) {
  if (start.number) return prog.Find(start.number);
  for (Statement* s = prog.First(); s; s = s->Next())
    if (s->Label() && SameName(s->Label(), start.label)) return s;
  return nullptr;
}

}  // namespace

ErrorCode Program::Chain(const std::string& path, const ChainStart& start, bool report,
                         bool* linkError) {
  SourceFile file;
  if (!file.Open(path)) {
    ErrorCode code = err::kChainOpen;
    if (file.Error() == host::kOutside)
      code = err::kOutsideSandbox;
    else if (file.Error() == EINVAL)
      code = err::kBadFileName;
    else if (file.Error() == host::kAmbiguous)
      code = err::kAmbiguousName;
    SetErrorNote(code, file.Note());
    return code;
  }
  std::unique_ptr<Program> next = LoadProgram(file, path, report);
  bool loaded = next->BadLines() == 0 && file.Limit() == 0 &&
                (g_err.parse == 0 || g_err.parse == err::kEndOfFile);
  SetParseError(0);
  if (!loaded) return err::kChainSyntax;
  if (ErrorCode code = Link(*next)) {
    *linkError = true;
    return code;
  }
  Statement* first = next->First();
  if (start.number || !start.label.empty()) {
    first = FindStart(*next, start);
    if (!first) return err::kUndefinedTarget;
  }
  if (!first->IsExecutable()) first = first->NextExecutable();
  size_t shared = std::min(common.size(), next->common.size());
  for (size_t i = 0; i < shared; ++i)
    if (!Compatible(common[i], next->common[i])) return err::kDimensionMismatch;
  for (size_t i = 0; i < shared; ++i) HandOver(common[i], next->common[i]);
  chained = std::move(next);
  chainStart = first;
  return 0;
}
