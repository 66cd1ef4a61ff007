// One BASIC program: statements, references, symbols, storage and run state.
// It is also the tokenizer that parses lines into itself.
#pragma once
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "base/base_list.h"
#include "expr/variables.h"
#include "lex/tokenizer.h"
#include "stmt/run_state.h"
#include "stmt/statement.h"

class FuncSpec;

// A referenced statement: by number or by label name. Statements that jump
// share one object per target, so renumbering moves every reference at once.
class TargetLabel final {
 public:
  TargetLabel(uint32_t number, std::string name) : number_(number), name_(std::move(name)) {}
  bool IsName() const { return !name_.empty(); }
  uint32_t Number() const { return number_; }
  const std::string& Name() const { return name_; }
  void SetNumber(uint32_t number) { number_ = number; }
  void List(std::string& out) const;  // "100" or "FIN:"

  Statement* resolved = nullptr;  // the statement it names, set by the link pass
  unsigned users = 0;             // statements that refer to it; LABELS shows it

 private:
  uint32_t number_;
  std::string name_;
};

// A statement's hold on a TargetLabel; released when the statement goes.
class TargetRef final {
 public:
  TargetRef() = default;
  TargetRef(Program& prog, TargetLabel* target) : prog_(&prog), target_(target) {}
  TargetRef(TargetRef&& other) noexcept : prog_(other.prog_), target_(other.target_) {
    other.target_ = nullptr;
  }
  TargetRef& operator=(TargetRef&& other) noexcept;
  ~TargetRef();
  explicit operator bool() const { return target_ != nullptr; }
  TargetLabel* get() const { return target_; }
  TargetLabel* operator->() const { return target_; }
  void List(std::string& out) const { target_->List(out); }
  // The statement named, or null when the link pass found none.
  Statement* Named() const { return target_->resolved; }
  // The first executable statement at or after the one named: where a jump lands.
  Statement* Landing() const;

 private:
  Program* prog_ = nullptr;
  TargetLabel* target_ = nullptr;
};

// A statement identifier: a number (1 to 999999) or a label, with or without
// its colon. An empty ref (position restored, no error) when there is none.
TargetRef ParseTarget(Program& prog);
// "THEN <stmtId>", as ON END and ON ERROR end: an empty ref with the parse
// error set (position restored) when THEN or the identifier is missing.
TargetRef ParseThenTarget(Program& prog);

// A COM variable. CHAIN hands the values of one program's list to the next by position.
using CommonEntry =
    std::variant<NumericSimpleData*, StringSimpleData*, NumericScriptData*, StringScriptData*>;

class Program final : public Tokenizer {
 public:
  static constexpr uint32_t kMaxNumber = 999999;  // the highest statement number

  explicit Program(std::string name = "");
  ~Program();

  const std::string& Name() const { return name_; }
  // A "#!" first line of the program file: not a statement, but written back by SAVE.
  std::string interpreterLine;

  // --- Statement list, always ending in the hidden end mark.
  Statement* First() const { return statements_.First(); }
  Statement* EndMark() const { return endMark_; }
  // The first statement numbered number, or null.
  Statement* Find(uint32_t number) const;
  // Stores a typed line's statements by number: replaces, inserts or appends.
  void InsertTyped(std::vector<StatementPtr> line);
  // Appends a line's statements before the end mark.
  void Append(std::vector<StatementPtr> line);
  // Unlinks and destroys one statement (and the statements that continue its line).
  void Delete(Statement* stmt);
  // Number of bad lines held.
  int BadLines() const { return badLines_; }
  // False once lines were stored or deleted after the last link: the links
  // (successors, block partners) may then name statements that are gone.
  bool LinksCurrent() const { return linksCurrent_; }
  void SetLinksCurrent() { linksCurrent_ = true; }

  // --- Parsing and listing.
  // Parses the rest of the tokenizer's line (after any statement number) into
  // statements: label, statement, trailing comment. A failed parse gives one
  // InvalidStmt; an empty line gives none, with the parse error kEndOfLine.
  std::vector<StatementPtr> ParseLine();
  // Lists one line (a statement and those that continue its line) and returns
  // the new block depth. indentWidth 0 indents with tabs.
  int ListLine(std::string& out, const Statement* s, int indentWidth, int depth,
               bool withNumber) const;

  // --- Statement references.
  TargetLabel* ReferNumber(uint32_t number);
  TargetLabel* ReferName(std::string_view name);
  void Release(TargetLabel* target);
  TargetLabel* FindTarget(uint32_t number) const;
  TargetLabel* FindTarget(std::string_view name) const;
  // In order of first reference; entries with no users left are dead and skipped.
  const std::vector<std::unique_ptr<TargetLabel>>& Targets() const { return targets_; }
  // Numbers the unnumbered statements after a load; true when it had to renumber.
  bool NumberUnnumbered();

  // --- Variable references and storage.
  BaseList_T<Reference, false>& References() { return references_; }
  void ClearStorage();
  NumericSimpleData* NumericSimple(const VarToken* name);            // found or created
  NumericSimpleData* FindNumericSimple(const VarToken* name) const;  // null when not created
  std::unique_ptr<NumericScriptData>& NumericArray(const VarToken* name);
  StringSimpleData* StringSimple(const VarToken* name);
  StringSimpleData* FindStringSimple(const VarToken* name) const;  // null when not created
  std::unique_ptr<StringScriptData>& StringArray(const VarToken* name);
  size_t HeapSize() const;

  // --- User functions: definitions by symbol.
  std::vector<FuncSpec*> functions;       // registered by DEF statements at link
  const ParameterList* params = nullptr;  // while a DEF body is parsed

  // --- Run state.
  RunState run;
  bool HasRun() const { return run.current != nullptr; }
  std::vector<CommonEntry> common;  // the COM variables in program order, made by the link
  // A program that CHAIN loaded and linked, and where it starts; the run loop
  // hands the run to it once the CHAIN statement has returned.
  std::unique_ptr<Program> chained;
  Statement* chainStart = nullptr;

 private:
  std::string name_;
  BaseList_T<Statement, true> statements_;
  Statement* endMark_;
  // Indexes that keep typing, loading and linking 100,000 lines linear.
  std::map<uint32_t, Statement*> lines_;  // numbered line heads by number
  int badLines_ = 0;
  bool linksCurrent_ = false;
  std::unordered_map<uint32_t, TargetLabel*> numberTargets_;
  std::unordered_map<std::string, TargetLabel*> nameTargets_;  // by upper-case name
  size_t deadTargets_ = 0;
  bool PullBelowLimit();
  void Index(Statement* head);
  void Unindex(Statement* head);
  void Forget(Statement* stmt);  // drops what refers to a statement about to go
  std::vector<std::unique_ptr<TargetLabel>> targets_;
  BaseList_T<Reference, false> references_;
  std::vector<std::unique_ptr<NumericSimpleData>> numSimple_;  // by symbol ordinal
  std::vector<std::unique_ptr<NumericScriptData>> numArrays_;
  std::vector<std::unique_ptr<StringSimpleData>> strSimple_;
  std::vector<std::unique_ptr<StringScriptData>> strArrays_;
};
