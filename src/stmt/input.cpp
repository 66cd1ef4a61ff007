// INPUT: typed values into a list of variables, with the classic re-type prompts.
#include <cstdlib>

#include "console/console.h"
#include "shell/program.h"
#include "stmt/input_scanner.h"
#include "stmt/parsers.h"
#include "stmt/targets.h"

namespace {

// Value of the hexadecimal digits after "0x".
float HexValue(std::string_view text) {
  double value = 0;
  for (char c : text.substr(2)) value = value * 16 + (c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
  return static_cast<float>(value);
}

class InputStmt : public Statement {
 public:
  InputStmt(RunState& run, TargetList targets) : run_(run), targets_(std::move(targets)) {}
  Statement* Execute() override;
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
  // The typed line and its scanner live on the stack while the INPUT runs.
  struct Typed {
    char line[Console::kLineMax + 1];
    InputScanner scanner;
  };
  // Prints the prompt and reads the next line; false when the INPUT ends (an
  // empty line, a break, or the end of input with 2004 raised).
  bool Ask(Typed& typed, const char* prompt);

  RunState& run_;  // its console asks and reads
  TargetList targets_;
};

class InputPromptStmt final : public InputStmt {
 public:
  InputPromptStmt(RunState& run, std::string_view prompt, TargetList targets)
      : InputStmt(run, std::move(targets)), prompt_(prompt) {}
  size_t Size() const override { return InputStmt::Size() + prompt_.size(); }

 protected:
  const char* Prompt() const override { return prompt_.c_str(); }
  void ListPrompt(std::string& out) const override {
    ListStringLiteral(out, prompt_);
    out += ',';
  }

 private:
  std::string prompt_;
};

bool InputStmt::Ask(Typed& typed, const char* prompt) {
  Console& con = *run_.console;
  con.Printf("%s", prompt);
  int n = con.ReadLine(typed.line);
  if (n == Console::kEndOfInput) Raise(err::kFileEnd, Location());
  if (n <= 0) return false;
  typed.scanner.Start(typed.line);
  return true;
}

Statement* InputStmt::Execute() {
  Console& con = *run_.console;
  Typed typed;
  InputScanner& scanner = typed.scanner;
  if (!Ask(typed, Prompt())) return successor_;
  size_t target = 0;
  unsigned itemNumber = 1;
  for (unsigned cls = scanner.Next();;) {
    if (cls != item::kEnd && target == targets_.size()) {
      con.Printf("Extra input - warning only (%u)\n", cls);
      break;
    }
    switch (cls) {
      case item::kEnd:
        if (target == targets_.size()) return successor_;
        if (!Ask(typed, "?")) return successor_;
        cls = scanner.Next();
        continue;
      case item::kString:
      case item::kText:
        if (!targets_[target]->IsString()) {
          con.Printf("Bad Input. Re-type from item %u\n", itemNumber);
          if (!Ask(typed, "??")) return successor_;
          cls = scanner.Next();
          continue;
        }
        targets_[target]->Assign(scanner.Text());
        break;
      case item::kInteger:
      case item::kDecimal:
      case item::kExponent:
        if (targets_[target]->IsString())
          targets_[target]->Assign(scanner.Text());
        else
          targets_[target]->Assign(static_cast<float>(std::strtod(scanner.CText(), nullptr)));
        break;
      case item::kHex:
        // A string target keeps the digits as typed, as for the other numbers.
        if (targets_[target]->IsString())
          targets_[target]->Assign(scanner.Text());
        else
          targets_[target]->Assign(HexValue(scanner.Text()));
        break;
      default:
        con.Printf("Bad Input. Re-type from item 1\n");
        target = 0;
        itemNumber = 1;
        if (!Ask(typed, "??")) return successor_;
        cls = scanner.Next();
        continue;
    }
    // A storage failure of the target (a subscript out of bounds) ends the INPUT.
    if (g_err.run) break;
    ++target;
    ++itemNumber;
    cls = scanner.Next();
  }
  return successor_;
}

}  // namespace

StatementPtr ParseInput(Program& p) {
  size_t mark = p.Mark();
  TargetList targets;
  if (p.Accept(tok::kString)) {
    std::string prompt(p.Text());
    if (!p.Accept(tok::kComma)) {
      SetParseError(err::kMissingDelimiter);
      p.Restore(mark);
      return nullptr;
    }
    if (!ParseTargetList(p, &targets) || targets.empty()) {
      SetParseError(err::kBadStringVar);
      p.Restore(mark);
      return nullptr;
    }
    return std::make_unique<InputPromptStmt>(p.run, prompt, std::move(targets));
  }
  if (!ParseTargetList(p, &targets) || targets.empty()) {
    SetParseError(err::kBadTarget);
    p.Restore(mark);
    return nullptr;
  }
  return std::make_unique<InputStmt>(p.run, std::move(targets));
}
