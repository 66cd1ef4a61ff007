// The Commands topic of HELP against the shell's command table: every command has
// an entry of one line, and every entry is a command.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "help/help_tree.h"
#include "lex/keywords.h"
#include "shell/shell.h"

namespace {

TEST(CommandHelp, EveryCommandHasAnEntryAndNoMore) {
  std::set<std::string> commands;
  for (std::string_view name : CommandNames()) {
    if (name == "TEST") continue;  // in the table, but answers "???" like an unknown word
    commands.emplace(name);
    bool found = false;
    for (const HelpEntry& e : HelpCommands().Entries())
      if (SameName(e.name, name)) {
        found = true;
        EXPECT_NE(dynamic_cast<const HelpLine*>(e.node), nullptr) << name << " has more lines";
      }
    EXPECT_TRUE(found) << name;
  }
  for (const HelpEntry& e : HelpCommands().Entries()) EXPECT_TRUE(commands.count(e.name)) << e.name;
}

}  // namespace
