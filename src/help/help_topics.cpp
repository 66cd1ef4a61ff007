// The shell commands' help lines and the top of the help tree.
#include "help/help_tree.h"

namespace {

constexpr const char* kGetLines[] = {
    "GET <fileName> - Load a program.",
    "Found by its name, with .bas, or ignoring case: HELP FILENAMES.",
};
constexpr HelpText kGet{kGetLines};
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
constexpr HelpLine kSyms{"SYMS - Accepted; does nothing."};
constexpr HelpLine kLabels{"LABELS - Statement numbers and labels referenced."};
constexpr HelpLine kWidth{"WIDTH [<n>] - Show or set the PRINT width: 1-255, 0 unlimited."};
constexpr const char* kClassicLines[] = {
    "CLASSIC [ON | OFF] - Show or set the classic switch.",
    "basic --classic starts with it on. It changes one rule:",
    "A$[s]=X leaves A$ exactly s-1+LEN(X) characters long.",
};
constexpr HelpText kClassic{kClassicLines};

// The first ten in their classic order, then the rest of the shell's commands.
constexpr HelpEntry kCommandEntries[] = {
    {"GET", &kGet},       {"SAVE", &kSave},   {"LIST", &kList},       {"RUN", &kRun},
    {"DEL", &kDel},       {"SCR", &kScr},     {"LEN", &kLen},         {"BYE", &kBye},
    {"CLS", &kCls},       {"HELP", &kHelp},   {"NEW", &kNew},         {"EXIT", &kExit},
    {"QUIT", &kQuit},     {"PRINT", &kPrint}, {"DUMP", &kDump},       {"SYMS", &kSyms},
    {"LABELS", &kLabels}, {"WIDTH", &kWidth}, {"CLASSIC", &kClassic},
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
