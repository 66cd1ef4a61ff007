// The help tree: constant groups of named entries whose leaves are one line or
// a few lines of text. HELP searches it by name, ignoring case.
#pragma once
#include <span>
#include <string_view>

class Console;
class Scanner;

class Helper {
 public:
  // The node named keyword below this one, or null; a name whose node is
  // missing is reported and the search goes on.
  virtual const Helper* Find(std::string_view keyword, Console& out) const = 0;
  // This node's own text, or a group's index.
  virtual void Print(Console& out) const = 0;
  // Answers a HELP request that reached this node; line holds the rest of it.
  virtual void Help(Scanner& line, Console& out) const = 0;
  // This node with everything below it.
  virtual void PrintAll(Console& out) const = 0;

 protected:
  ~Helper() = default;  // nodes are static data, never deleted through the base
};

class HelpLine final : public Helper {
 public:
  constexpr explicit HelpLine(const char* line) : line_(line) {}
  const Helper* Find(std::string_view, Console&) const override { return nullptr; }
  void Print(Console& out) const override;
  void Help(Scanner&, Console& out) const override { Print(out); }
  void PrintAll(Console& out) const override { Print(out); }
  const char* Line() const { return line_; }

 private:
  const char* line_;
};

class HelpText final : public Helper {
 public:
  constexpr explicit HelpText(std::span<const char* const> lines) : lines_(lines) {}
  const Helper* Find(std::string_view, Console&) const override { return nullptr; }
  void Print(Console& out) const override;
  void Help(Scanner&, Console& out) const override { Print(out); }
  void PrintAll(Console& out) const override { Print(out); }
  std::span<const char* const> Lines() const { return lines_; }

 private:
  std::span<const char* const> lines_;
};

struct HelpEntry {
  const char* name;
  const Helper* node;  // null: the entry is named but has no text
};

class HelpGroup final : public Helper {
 public:
  constexpr explicit HelpGroup(std::span<const HelpEntry> entries) : entries_(entries) {}
  const Helper* Find(std::string_view keyword, Console& out) const override;
  void Print(Console& out) const override;
  void Help(Scanner& line, Console& out) const override;
  void PrintAll(Console& out) const override;
  std::span<const HelpEntry> Entries() const { return entries_; }

 private:
  std::span<const HelpEntry> entries_;
};

// The four topics: Commands, Statements, Functions, General.
const HelpGroup& HelpTop();
const HelpGroup& HelpCommands();
const HelpGroup& HelpStatements();
const HelpGroup& HelpFunctions();
const HelpGroup& HelpGeneral();

// The HELP command; rest is the line after the word HELP.
void ShowHelp(std::string_view rest, Console& out);
