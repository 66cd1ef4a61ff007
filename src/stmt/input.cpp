// INPUT: typed values into a list of variables, with the classic re-type prompts.
#include "console/console.h"
#include "lex/input_scanner.h"
#include "lex/parse_attempt.h"
#include "stmt/input_loop.h"
#include "stmt/parsers.h"
#include "stmt/prompted.h"
#include "stmt/stmt_context.h"
#include "stmt/targets.h"

namespace {

// The typed line and its scanner live on the stack while the dialogue runs.
struct Typed {
  char line[Console::kLineMax + 1];
  InputScanner scanner;
};

// Prints the prompt and reads the next line; false when the dialogue ends (an
// empty line, a break, or the end of input with kFileEnd raised).
bool Ask(Console& con, Typed& typed, const char* prompt, uint32_t location) {
  con.Printf("%s", prompt);
  int n = con.ReadLine(typed.line);
  if (n == Console::kEndOfInput) Raise(err::kFileEnd, location);
  if (n <= 0) return false;
  typed.scanner.Start(typed.line);
  return true;
}

// An INPUT's own variables as the dialogue's slots.
class TargetSlots final : public InputSlots {
 public:
  explicit TargetSlots(const TargetList& targets) : targets_(targets) {}
  size_t Count() const override { return targets_.size(); }
  bool IsString(size_t i) const override { return targets_[i]->IsString(); }
  void Assign(size_t i, float value) override { targets_[i]->Assign(value); }
  void Assign(size_t i, std::string_view text) override { targets_[i]->Assign(text); }

 private:
  const TargetList& targets_;
};

class InputStmt : public Statement {
 public:
  InputStmt(RunState& run, TargetList targets) : run_(run), targets_(std::move(targets)) {}
  Statement* Execute() override {
    TargetSlots slots(targets_);
    RunInput(*run_.console, Prompt(), slots, Location());
    return successor_;
  }
  TokenCode Code() const override { return tok::kInput; }
  size_t Size() const override { return sizeof *this + TargetsSize(targets_); }
  void List(std::string& out) const override {
    out += "INPUT ";
    ListPrompt(out);
    ListTargets(out, targets_);
  }

 protected:
  virtual const char* Prompt() const { return "?"; }
  virtual void ListPrompt(std::string&) const {}

 private:
  RunState& run_;  // its console asks and reads
  TargetList targets_;
};

}  // namespace

void RunInput(Console& con, const char* prompt, InputSlots& slots, uint32_t location) {
  Typed typed;
  InputScanner& scanner = typed.scanner;
  if (!Ask(con, typed, prompt, location)) return;
  size_t slot = 0;
  size_t count = slots.Count();
  unsigned itemNumber = 1;
  for (unsigned cls = scanner.Next();;) {
    if (cls != item::kEnd && slot == count) {
      con.Printf("Extra input - warning only (%u)\n", cls);
      return;
    }
    switch (cls) {
      case item::kEnd:
        if (slot == count) return;
        if (!Ask(con, typed, "?", location)) return;
        cls = scanner.Next();
        continue;
      case item::kString:
      case item::kText:
        if (!slots.IsString(slot)) {
          con.Printf("Bad Input. Re-type from item %u\n", itemNumber);
          if (!Ask(con, typed, "??", location)) return;
          cls = scanner.Next();
          continue;
        }
        slots.Assign(slot, scanner.Text());
        break;
      case item::kInteger:
      case item::kDecimal:
      case item::kExponent:
      case item::kHex:
        // A string target keeps a number's text as typed, hexadecimal included.
        if (slots.IsString(slot))
          slots.Assign(slot, scanner.Text());
        else
          slots.Assign(slot, scanner.Number(cls));
        break;
      default:
        con.Printf("Bad Input. Re-type from item 1\n");
        slot = 0;
        itemNumber = 1;
        if (!Ask(con, typed, "??", location)) return;
        cls = scanner.Next();
        continue;
    }
    // A storage failure of the target (a subscript out of bounds) ends the dialogue.
    if (g_err.run) return;
    ++slot;
    ++itemNumber;
    cls = scanner.Next();
  }
}

StatementPtr ParseInput(StmtContext& p) {
  ParseAttempt attempt(p);
  TargetList targets;
  if (p.Accept(tok::kString)) {
    std::string prompt(p.Text());
    if (!p.Accept(tok::kComma)) return attempt.Replace(err::kMissingDelimiter);
    if (!ParseTargetList(p, &targets) || targets.empty())
      return attempt.Replace(err::kBadStringVar);
    return std::make_unique<Prompted<InputStmt>>(prompt, p.run, std::move(targets));
  }
  if (!ParseTargetList(p, &targets) || targets.empty()) return attempt.Replace(err::kBadTarget);
  return std::make_unique<InputStmt>(p.run, std::move(targets));
}
