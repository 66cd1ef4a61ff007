// The variables that READ and INPUT store into, in the order they are written.
#pragma once
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "expr/variables.h"

class StmtContext;

// One variable of a READ or INPUT list.
class Target {
 public:
  virtual ~Target() = default;
  virtual bool IsString() const = 0;
  // The longest text a text file may put in a string target (StringVar::Room).
  virtual uint32_t Room() const { return kMaxStringLength; }
  virtual void Assign(float value) = 0;
  virtual void Assign(std::string_view text) = 0;
  virtual size_t Size() const = 0;
  virtual void List(std::string& out) const = 0;
};

class NumericTarget final : public Target {
 public:
  explicit NumericTarget(std::unique_ptr<NumericVar> var) : var_(std::move(var)) {}
  bool IsString() const override { return false; }
  void Assign(float value) override { var_->Assign(value); }
  void Assign(std::string_view) override {}
  size_t Size() const override { return sizeof *this + var_->Size(); }
  void List(std::string& out) const override { var_->List(out); }

 private:
  std::unique_ptr<NumericVar> var_;
};

class StringTarget final : public Target {
 public:
  explicit StringTarget(std::unique_ptr<StringVar> var) : var_(std::move(var)) {}
  bool IsString() const override { return true; }
  uint32_t Room() const override { return var_->Room(); }
  void Assign(float) override {}
  void Assign(std::string_view text) override { var_->Assign(text); }
  size_t Size() const override { return sizeof *this + var_->Size(); }
  void List(std::string& out) const override { var_->List(out); }

 private:
  std::unique_ptr<StringVar> var_;
};

using TargetList = std::vector<std::unique_ptr<Target>>;

// Parses variables separated by ","; a numeric reading of a name is tried
// before a string one. Empty (position restored) when no variable starts the
// list; false with kBadTarget stored when a comma is followed by no variable.
bool ParseTargetList(StmtContext& p, TargetList* out);
size_t TargetsSize(const TargetList& targets);
void ListTargets(std::string& out, const TargetList& targets);  // "A,B$(2)"
