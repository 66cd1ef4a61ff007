// Statement references: the numbers and labels that jumps, RESTORE and ON END
// name, one shared object per target, so renumbering moves every reference at once.
#pragma once
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

class Statement;
class StmtContext;

// A referenced statement: by number or by label name.
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

// A program's targets, indexed by number and by upper-case name.
class TargetTable final {
 public:
  TargetLabel* ReferNumber(uint32_t number);
  TargetLabel* ReferName(std::string_view name);
  void Release(TargetLabel* target);
  TargetLabel* Find(uint32_t number) const;
  TargetLabel* Find(std::string_view name) const;
  // In order of first reference; entries with no users left are dead and skipped.
  const std::vector<std::unique_ptr<TargetLabel>>& All() const { return targets_; }
  // Gives targets new numbers. Every old number leaves the index before a new
  // one enters, so the old and new numbers of a batch may overlap.
  void Renumber(std::span<const std::pair<TargetLabel*, uint32_t>> moves);

 private:
  std::vector<std::unique_ptr<TargetLabel>> targets_;
  std::unordered_map<uint32_t, TargetLabel*> numberTargets_;
  std::unordered_map<std::string, TargetLabel*> nameTargets_;  // by upper-case name
  size_t deadTargets_ = 0;
};

// A statement's hold on a TargetLabel; released when the statement goes.
class TargetRef final {
 public:
  TargetRef() = default;
  TargetRef(TargetTable& table, TargetLabel* target) : table_(&table), target_(target) {}
  TargetRef(TargetRef&& other) noexcept : table_(other.table_), target_(other.target_) {
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
  TargetTable* table_ = nullptr;
  TargetLabel* target_ = nullptr;
};

// A statement identifier: a number (1 to 999999) or a label, with or without
// its colon. An empty ref (position restored, no error) when there is none.
TargetRef ParseTarget(StmtContext& p);
// "THEN <stmtId>", as ON END and ON ERROR end: an empty ref with the parse
// error set (position restored) when THEN or the identifier is missing.
TargetRef ParseThenTarget(StmtContext& p);
