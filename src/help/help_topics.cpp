// The shell commands' help lines and the top of the help tree.
#include "help/help_tree.h"

namespace {

constexpr HelpLine kGet{"GET <fileName> - Load a program (how it is found: HELP FILENAMES)."};
constexpr HelpLine kSave{"SAVE <fileName>[nolinenumbers] - Save loaded program."};
constexpr HelpLine kList{"LIST [<start#> [<end#>]] - List loaded program."};
constexpr HelpLine kRun{"RUN - Run loaded program."};
constexpr HelpLine kDel{"DEL <start#> [<end#>] - Delete Lines in loaded program."};
constexpr HelpLine kScr{"SCR - Scratch loaded program."};
constexpr HelpLine kLen{"LEN - Bytes used by loaded program."};
constexpr HelpLine kBye{"BYE - Exit Basic."};
constexpr HelpLine kCls{"CLS - Clear screen."};
constexpr HelpLine kHelp{"Help [<keyword>] - Display help."};
constexpr HelpLine kNew{"NEW - Scratch loaded program, as SCR."};
constexpr HelpLine kExit{"EXIT - Exit Basic, as BYE."};
constexpr HelpLine kQuit{"QUIT - Exit Basic, as BYE."};
constexpr HelpLine kPrint{"PRINT <printList> - Print with the variables of the last run."};
constexpr HelpLine kDump{"DUMP [<start#> [<end#>]] - Statements with sizes, after a run."};
constexpr HelpLine kSyms{"SYMS - Variables of the last run with their values."};
constexpr HelpLine kLabels{"LABELS - Statement numbers and labels referenced."};
constexpr HelpLine kWidth{"WIDTH [<n>] - Show or set the PRINT width: 1-255, 0 unlimited."};
constexpr HelpLine kRandomize{"RANDOMIZE [<x>] - Seed RND for PRINT, from x or the clock."};
constexpr HelpLine kRandom{"RANDOM [<x>] - The same as RANDOMIZE."};
constexpr HelpLine kClassic{"CLASSIC [ON | OFF] - Show or set the classic switch (HELP CLASSIC)."};
constexpr HelpLine kRenumber{
    "RENUMBER [<new#> [,<step> [,<first#> [,<last#>]]]] - Renumber lines."};
constexpr HelpLine kRenum{"RENUM - Same as RENUMBER."};
constexpr HelpLine kAuto{"AUTO [<start#> [,<step>]] - Number new lines; an empty line stops."};
constexpr HelpLine kEdit{"EDIT <line#> - Edit a line; Enter stores it, Escape leaves it."};
constexpr HelpLine kAppend{"APPEND <fileName> - Add a program after the last line."};
constexpr HelpLine kMerge{"MERGE <fileName> - Add a program's lines, replacing equal numbers."};
constexpr HelpLine kCatalog{"CATALOG [$ | *] - Programs and data files, or a library's."};
constexpr HelpLine kCat{"CAT - Same as CATALOG."};
constexpr HelpLine kLibrary{"LIBRARY - The system library's files, as CATALOG $."};
constexpr HelpLine kDelete{"DELETE <start#>[-<end#>] - Delete one line, or a range."};
constexpr HelpLine kTrace{"TRACE ON | TRACE OFF - Show statement numbers as they run."};
constexpr HelpLine kTron{"TRON - Same as TRACE ON."};
constexpr HelpLine kTroff{"TROFF - Same as TRACE OFF."};
constexpr HelpLine kContinue{"CONTINUE - Go on after STOP or Ctrl+C, unless a line changed."};
constexpr HelpLine kCont{"CONT - Same as CONTINUE."};

// The first ten in their classic order, then the rest of the shell's commands.
constexpr HelpEntry kCommandEntries[] = {
    {"GET", &kGet},
    {"SAVE", &kSave},
    {"LIST", &kList},
    {"RUN", &kRun},
    {"DEL", &kDel},
    {"SCR", &kScr},
    {"LEN", &kLen},
    {"BYE", &kBye},
    {"CLS", &kCls},
    {"HELP", &kHelp},
    {"NEW", &kNew},
    {"EXIT", &kExit},
    {"QUIT", &kQuit},
    {"PRINT", &kPrint},
    {"DUMP", &kDump},
    {"SYMS", &kSyms},
    {"LABELS", &kLabels},
    {"WIDTH", &kWidth},
    {"CLASSIC", &kClassic},
    {"RENUMBER", &kRenumber},
    {"RENUM", &kRenum},
    {"AUTO", &kAuto},
    {"EDIT", &kEdit},
    {"APPEND", &kAppend},
    {"MERGE", &kMerge},
    {"CATALOG", &kCatalog},
    {"CAT", &kCat},
    {"LIBRARY", &kLibrary},
    {"DELETE", &kDelete},
    {"TRACE", &kTrace},
    {"TRON", &kTron},
    {"TROFF", &kTroff},
    {"CONTINUE", &kContinue},
    {"CONT", &kCont},
    {"RANDOMIZE", &kRandomize},
    {"RANDOM", &kRandom},
};

constexpr HelpGroup kCommands{kCommandEntries};

}  // namespace

const HelpGroup& HelpCommands() { return kCommands; }

const HelpGroup& HelpTop() {
  static const HelpEntry kTopics[] = {
      {"Commands", &kCommands},
      {"Statements", &HelpStatements()},
      {"Functions", &HelpFunctions()},
      {"General", &HelpGeneral()},
  };
  static const HelpGroup kTop{kTopics};
  return kTop;
}
