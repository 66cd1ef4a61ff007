// The values of PRINT USING: numeric and string expressions parsed once,
// evaluated one at a time as the format's fields take them.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "expr/string_exp.h"
#include "format/print_list.h"
#include "format/using_runner.h"

// One value of the list.
class UsingSpec {
 public:
  virtual ~UsingSpec() = default;
  virtual size_t Size() const = 0;
  virtual void List(std::string& out) const = 0;
  virtual FieldValue Evaluate() = 0;
  // TAB, SPA or LIN, which takes no field; null for a value.
  virtual PrintSpecList* Function() { return nullptr; }
};
using UsingSpecPtr = std::unique_ptr<UsingSpec>;

class UsingSpecList final : public UsingValues {
 public:
  // "value {, value}" up to the statement's end: each a numeric expression,
  // else a string expression; under the classic switch also TAB, SPA and LIN.
  // False with the parse error set (37 when a value is missing), the position
  // restored.
  bool Parse(ExprContext& prog);
  bool Empty() const { return specs_.empty(); }
  size_t Size() const;
  void List(std::string& out) const;  // "A,B$"

  // Starts a new statement at the first value.
  void Rewind() { next_ = 0; }
  bool Remains() const override { return next_ < specs_.size(); }
  FieldValue Take() override { return specs_[next_++]->Evaluate(); }
  void PlaceFunctions(PrintSink& line) override;

 private:
  std::vector<UsingSpecPtr> specs_;
  size_t next_ = 0;
};
