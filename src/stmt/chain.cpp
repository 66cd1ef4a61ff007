// CHAIN: loads another program file, links it, hands it the COM variables by
// position, and lets the run loop carry on in it.
#include <variant>

#include "lex/keywords.h"
#include "lex/parse_attempt.h"
#include "program/loader.h"
#include "program/program.h"
#include "program/run.h"
#include "stmt/parsers.h"

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
Statement* FindStart(Program& prog, uint32_t number, const std::string& label) {
  if (number) return prog.Find(number);
  for (Statement* s = prog.First(); s; s = s->Next())
    if (s->Label() && SameName(s->Label(), label)) return s;
  return nullptr;
}

// CHAIN [r,] name [, stmtId]. Without r, a failure stops the run; with r, r
// gets the failure's code and the program goes on. A chain that works sets r
// to 0 first, so a COM variable r tells the new program so.
class ChainStmt final : public Statement {
 public:
  ChainStmt(Program& prog, std::unique_ptr<NumericVar> status, StringExpPtr name,
            uint32_t startNumber, std::string startLabel)
      : prog_(prog),
        status_(std::move(status)),
        name_(std::move(name)),
        startNumber_(startNumber),
        startLabel_(std::move(startLabel)) {}
  Statement* Execute() override {
    std::string path(name_->Evaluate(work_));
    if (g_err.run) return Fail(g_err.run);
    if (status_) status_->Assign(0.0f);
    SourceFile file;
    if (!file.Open(path.c_str())) return Refuse(err::kChainOpen);
    // With r the program reports for itself, so the loader stays quiet.
    std::unique_ptr<Program> next = LoadProgram(file, path, !status_);
    bool loaded = next->BadLines() == 0 && file.Limit() == 0 &&
                  (g_err.parse == 0 || g_err.parse == err::kEndOfFile);
    SetParseError(0);
    if (!loaded) return Refuse(err::kChainSyntax);
    if (ErrorCode code = Link(*next)) {
      if (status_) return Refuse(code);
      // Reported where the new program failed, in its own file.
      if (HasLocation()) SetErrorFile(path.c_str());
      return successor_;
    }
    Statement* start = next->First();
    if (startNumber_ || !startLabel_.empty()) {
      start = FindStart(*next, startNumber_, startLabel_);
      if (!start) return Refuse(err::kUndefinedTarget);
    }
    if (!start->IsExecutable()) start = start->NextExecutable();
    size_t shared = std::min(prog_.common.size(), next->common.size());
    for (size_t i = 0; i < shared; ++i)
      if (!Compatible(prog_.common[i], next->common[i])) return Refuse(err::kDimensionMismatch);
    for (size_t i = 0; i < shared; ++i) HandOver(prog_.common[i], next->common[i]);
    prog_.chained = std::move(next);
    prog_.chainStart = start;
    return nullptr;  // the run loop takes over
  }
  TokenCode Code() const override { return tok::kChain; }
  size_t Size() const override {
    return sizeof *this + (status_ ? status_->Size() : 0) + name_->Size() + startLabel_.size() +
           work_.Capacity();
  }
  void List(std::string& out) const override {
    out += "CHAIN ";
    if (status_) {
      status_->List(out);
      out += ',';
    }
    name_->List(out);
    if (startNumber_) {
      out += ',';
      out += std::to_string(startNumber_);
    } else if (!startLabel_.empty()) {
      out += ',';
      out += startLabel_;
      out += ':';
    }
  }

 private:
  // A chain that fails: r gets the code and the run goes on, else the run stops.
  Statement* Refuse(ErrorCode code) {
    ClearError();
    if (!status_) return Fail(code);
    status_->Assign(static_cast<float>(code));
    return g_err.run ? Fail(g_err.run) : successor_;
  }

  Program& prog_;
  std::unique_ptr<NumericVar> status_;  // r, or null
  StringExpPtr name_;
  uint32_t startNumber_;    // the start statement's number, or 0
  std::string startLabel_;  // or its label; both empty: the first statement
  StringValue work_;
};

}  // namespace

StatementPtr ParseChain(Program& p) {
  ParseAttempt attempt(p);
  std::unique_ptr<NumericVar> status = ParseNumericVar(p);
  if (status && !p.Accept(tok::kComma)) {
    SetParseError(err::kMissingDelimiter);
    return nullptr;
  }
  if (!status) attempt.Rewind();
  StringExpPtr name = ParseStringExp(p);
  if (!name) {
    if (!g_err.parse) SetParseError(err::kBadStringExp);
    return nullptr;
  }
  uint32_t number = 0;
  std::string label;
  if (p.Accept(tok::kComma)) {
    TokenCode code = p.GetToken();
    if (code == tok::kInteger) {
      uint64_t value = 0;
      for (char c : p.Text()) value = std::min<uint64_t>(value * 10 + (c - '0'), 1000000);
      if (value >= 1 && value <= 999999) number = static_cast<uint32_t>(value);
    } else if (tok::Category(code) == tok::kNumVar && code >= tok::kFirstCoded && p.Symbol()) {
      label = p.Text();
      p.Accept(tok::kColon);
    }
    if (!number && label.empty()) {
      SetParseError(err::kBadStmtNumber);
      return nullptr;
    }
  }
  return std::make_unique<ChainStmt>(p, std::move(status), std::move(name), number,
                                     std::move(label));
}
