// One BASIC program: the statement store, and through its bases the tokenizer
// that parses lines into it, its symbols, variables, statement references and
// run state. It answers the requests of its statements (the statement after
// THEN, CHAIN) and of its expressions (TYP, REC, ITM), which lie above them.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/base_list.h"
#include "files/file_units.h"
#include "matrix/matrix.h"
#include "stmt/statement.h"
#include "stmt/stmt_context.h"

class Program final : public StmtContext {
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
  // Counts the changes to the lines: a store, a deletion, a renumbering each
  // add one, so that a stopped run knows whether the program is still its own.
  uint64_t Edits() const { return edits_; }

  // --- Parsing and listing.
  // Parses the rest of the tokenizer's line (after any statement number) into
  // statements: label, statement, trailing comment. A failed parse gives one
  // InvalidStmt; an empty line gives none, with the parse error kEndOfLine.
  std::vector<StatementPtr> ParseLine();
  // Lists one line (a statement and those that continue its line) and returns
  // the new block depth. indentWidth 0 indents with tabs.
  int ListLine(std::string& out, const Statement* s, int indentWidth, int depth,
               bool withNumber) const;
  // One line as plain text, without LIST's columns and indentation: "20 GOTO 95".
  static std::string LineText(const Statement* head);

  // --- Statement references.
  TargetLabel* FindTarget(uint32_t number) const { return targets.Find(number); }
  TargetLabel* FindTarget(std::string_view name) const { return targets.Find(name); }
  // Numbers the unnumbered statements after a load, those before the first
  // numbered line from after on; true when it had to renumber.
  bool NumberUnnumbered(uint32_t after = 0);
  // Gives lines (their first statements) new numbers, and the references to
  // their old numbers the new ones. The caller keeps the lines in rising order
  // and clear of the numbers that references to missing lines hold.
  void Renumber(std::span<const std::pair<Statement*, uint32_t>> lines);

  // --- Storage and run state.
  void ClearStorage();
  size_t HeapSize() const { return variables.HeapSize(); }
  bool HasRun() const { return run.current != nullptr; }
  // A program that CHAIN loaded and linked, and where it starts; the run loop
  // hands the run to it once the CHAIN statement has returned.
  std::unique_ptr<Program> chained;
  Statement* chainStart = nullptr;

  // --- The requests of statements and expressions.
  StatementPtr ParseAfterThen() override;
  ErrorCode Chain(const std::string& path, const ChainStart& start, bool report,
                  bool* linkError) override;  // chain_loader.cpp
  NumericExpPtr FileFunction(const KeyToken* key, NumericExpPtr arg) override;

 private:
  std::string name_;
  FileUnits files_;    // run.files: closed by every link and at the end of every run
  MatrixWork matrix_;  // run.matrix
  BaseList_T<Statement, true> statements_;
  Statement* endMark_;
  // Indexes that keep typing, loading and linking 100,000 lines linear.
  std::map<uint32_t, Statement*> lines_;  // numbered line heads by number
  int badLines_ = 0;
  bool linksCurrent_ = false;
  uint64_t edits_ = 0;
  bool PullBelowLimit();
  bool ParseStatements(std::vector<StatementPtr>& line);
  void Index(Statement* head);
  void Unindex(Statement* head);
  void Forget(Statement* stmt);  // drops what refers to a statement about to go
};
