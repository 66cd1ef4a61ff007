// PRINT to the console: bare, or with a print list.
#include "console/console.h"
#include "format/print_list.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

// PRINT writes to the console the run is bound to.
class PrintStmt : public Statement {
 public:
  explicit PrintStmt(RunState& run) : run_(run) {}
  TokenCode Code() const override { return tok::kPrint; }

 protected:
  RunState& run_;
};

// A bare PRINT ends the line through the plain path, as the shell's own output does.
class PrintConsoleStmt final : public PrintStmt {
 public:
  using PrintStmt::PrintStmt;
  Statement* Execute() override {
    run_.console->PutPlain('\n');
    return successor_;
  }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "PRINT"; }
};

class PrintConsoleListStmt final : public PrintStmt {
 public:
  PrintConsoleListStmt(RunState& run, PrintSpecPtr items, PrintSpecPtr end)
      : PrintStmt(run), items_(std::move(items)), end_(std::move(end)) {}
  Statement* Execute() override {
    Console& con = *run_.console;
    items_->Execute(con);
    end_->Execute(con);
    return successor_;
  }
  size_t Size() const override { return sizeof *this + items_->Size() + end_->Size(); }
  void List(std::string& out) const override {
    out += "PRINT ";
    items_->List(out);
    end_->List(out);
  }

 private:
  PrintSpecPtr items_;
  PrintSpecPtr end_;  // the newline, or the trailing separator
};

}  // namespace

StatementPtr ParsePrint(StmtContext& p) {
  TokenCode next = p.Peek();
  if (next == tok::kEndOfLine || next == tok::kComment)
    return std::make_unique<PrintConsoleStmt>(p.run);
  if (p.Accept(tok::kUsing)) return ParsePrintUsing(p);
  PrintSpecPtr items, end;
  if (!ParsePrintList(p, &items, &end)) return nullptr;
  return std::make_unique<PrintConsoleListStmt>(p.run, std::move(items), std::move(end));
}
