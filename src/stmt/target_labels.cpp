#include "stmt/target_labels.h"

#include <algorithm>

#include "lex/parse_attempt.h"
#include "stmt/stmt_context.h"

void TargetLabel::List(std::string& out) const {
  if (IsName()) {
    out += name_;
    out += ':';
  } else {
    out += std::to_string(number_);
  }
}

TargetRef& TargetRef::operator=(TargetRef&& other) noexcept {
  if (this != &other) {
    if (target_) table_->Release(target_);
    table_ = other.table_;
    target_ = other.target_;
    other.target_ = nullptr;
  }
  return *this;
}

TargetRef::~TargetRef() {
  if (target_) table_->Release(target_);
}

Statement* TargetRef::Landing() const {
  Statement* s = target_->resolved;
  return s && !s->IsExecutable() ? s->NextExecutable() : s;
}

TargetRef ParseTarget(StmtContext& p) {
  ParseAttempt attempt(p);
  TokenCode code = p.GetToken();
  if (code == tok::kInteger) {
    uint64_t value = 0;
    for (char c : p.Text()) value = std::min<uint64_t>(value * 10 + (c - '0'), 1000000);
    if (value >= 1 && value <= 999999)
      return TargetRef(p.targets, p.targets.ReferNumber(static_cast<uint32_t>(value)));
  } else if (tok::Category(code) == tok::kNumVar && code >= tok::kFirstCoded && p.Symbol()) {
    std::string name(p.Text());
    p.Accept(tok::kColon);
    return TargetRef(p.targets, p.targets.ReferName(name));
  }
  attempt.Rewind();
  return TargetRef();
}

TargetRef ParseThenTarget(StmtContext& p) {
  ParseAttempt attempt(p);
  if (!p.Accept(tok::kThen)) {
    attempt.Replace(err::kMissingDelimiter);
    return TargetRef();
  }
  TargetRef target = ParseTarget(p);
  if (!target) attempt.Replace(err::kBadStmtNumber);
  return target;
}

namespace {
std::string NameKey(std::string_view name) {
  std::string key(name);
  for (char& c : key)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return key;
}
}  // namespace

TargetLabel* TargetTable::Find(uint32_t number) const {
  auto it = numberTargets_.find(number);
  return number != 0 && it != numberTargets_.end() ? it->second : nullptr;
}

TargetLabel* TargetTable::Find(std::string_view name) const {
  auto it = nameTargets_.find(NameKey(name));
  return it != nameTargets_.end() ? it->second : nullptr;
}

TargetLabel* TargetTable::ReferNumber(uint32_t number) {
  TargetLabel*& target = numberTargets_[number];
  if (!target) {
    targets_.push_back(std::make_unique<TargetLabel>(number, ""));
    target = targets_.back().get();
  }
  ++target->users;
  return target;
}

TargetLabel* TargetTable::ReferName(std::string_view name) {
  TargetLabel*& target = nameTargets_[NameKey(name)];
  if (!target) {
    targets_.push_back(std::make_unique<TargetLabel>(0, std::string(name)));
    target = targets_.back().get();
  }
  ++target->users;
  return target;
}

// A target nobody refers to leaves the indexes at once and the table in
// batches, so that deleting many jumps stays linear.
void TargetTable::Release(TargetLabel* target) {
  if (!target || --target->users > 0) return;
  if (target->IsName()) {
    auto it = nameTargets_.find(NameKey(target->Name()));
    if (it != nameTargets_.end() && it->second == target) nameTargets_.erase(it);
  } else {
    auto it = numberTargets_.find(target->Number());
    if (it != numberTargets_.end() && it->second == target) numberTargets_.erase(it);
  }
  if (++deadTargets_ > 64 && deadTargets_ * 2 > targets_.size()) {
    std::erase_if(targets_, [](const auto& t) { return t->users == 0; });
    deadTargets_ = 0;
  }
}

void TargetTable::Renumber(std::span<const std::pair<TargetLabel*, uint32_t>> moves) {
  for (const auto& [target, n] : moves) numberTargets_.erase(target->Number());
  for (const auto& [target, n] : moves) {
    target->SetNumber(n);
    numberTargets_[n] = target;
  }
}
