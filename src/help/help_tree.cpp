#include "help/help_tree.h"

#include <string>

#include "console/console.h"
#include "lex/keywords.h"
#include "lex/tokenizer.h"

namespace {

constexpr int kIndexColumns = 6;  // names per row of a group's index

// The text of the next token of a HELP line, or false at its end.
bool NextKeyword(Scanner& line, std::string_view* keyword) {
  TokenCode code = line.NextLexeme();
  if (code == tok::kEndOfLine || code == tok::kEndOfInput) return false;
  *keyword = line.Lexeme();
  return true;
}

}  // namespace

void HelpLine::Print(Console& out) const { out.Printf("    %s\n", line_); }

void HelpText::Print(Console& out) const {
  for (const char* line : lines_) out.Printf("    %s\n", line);
}

// All names of this group are compared before any group below it is entered,
// and those are entered from the last back to the first: a name in two groups
// is found in the later one (HELP LEN is the function, not the command).
const Helper* HelpGroup::Find(std::string_view keyword, Console& out) const {
  for (const HelpEntry& entry : entries_) {
    if (!SameName(entry.name, keyword)) continue;
    if (entry.node) return entry.node;
    out.Printf("Help for \"%.*s\" is missing!\n", static_cast<int>(keyword.size()), keyword.data());
  }
  for (auto it = entries_.rbegin(); it != entries_.rend(); ++it)
    if (it->node)
      if (const Helper* found = it->node->Find(keyword, out)) return found;
  return nullptr;
}

void HelpGroup::Print(Console& out) const {
  out.Write("    ");
  int n = 0;
  for (const HelpEntry& entry : entries_) {
    if (n > 0 && n % kIndexColumns == 0) out.Write("\n    ");
    out.Printf("%-12s", entry.name);
    ++n;
  }
  out.Write("\n");
}

void HelpGroup::Help(Scanner& line, Console& out) const {
  std::string_view keyword;
  if (!NextKeyword(line, &keyword)) {
    PrintAll(out);
    return;
  }
  if (const Helper* found = Find(keyword, out)) {
    out.Write("\n");
    found->Help(line, out);
    return;
  }
  out.Printf("No help on \"%.*s\" is available.\n", static_cast<int>(keyword.size()),
             keyword.data());
}

void HelpGroup::PrintAll(Console& out) const {
  for (const HelpEntry& entry : entries_) {
    out.Printf("\n%s:\n", entry.name);
    if (entry.node) entry.node->Print(out);
  }
}

void ShowHelp(std::string_view rest, Console& out) {
  std::string text(rest);  // the scanner reads up to a terminating NUL
  Scanner line;
  line.SetLine(text.c_str());
  HelpTop().Help(line, out);
}
