// DEF: a one-line function definition. It does nothing at run time; the link
// pass registers it so that calls can bind to it.
#include <algorithm>

#include "expr/user_func.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

class DefSingleStmt final : public Statement {
 public:
  DefSingleStmt(StmtContext& prog, std::unique_ptr<FuncSpec> spec)
      : prog_(prog), spec_(std::move(spec)) {}
  // A deleted line must not leave its definition registered.
  ~DefSingleStmt() override { std::erase(prog_.functions, spec_.get()); }

  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kDef; }
  size_t Size() const override { return sizeof *this + spec_->Size(); }
  void List(std::string& out) const override {
    out += "DEF ";
    spec_->List(out);
  }
  bool IsExecutable() const override { return false; }
  ErrorCode Check(StmtContext& prog) override {
    for (const FuncSpec* f : prog.functions)
      if (f->Name() == spec_->Name()) return err::kDuplicateFunction;
    prog.functions.push_back(spec_.get());
    return 0;
  }

 private:
  StmtContext& prog_;
  std::unique_ptr<FuncSpec> spec_;
};

}  // namespace

StatementPtr ParseDef(StmtContext& p) {
  std::unique_ptr<FuncSpec> spec = ParseFuncSpec(p);
  if (!spec) return nullptr;
  return std::make_unique<DefSingleStmt>(p, std::move(spec));
}
