// The shell commands' help lines and the top of the help tree.
#include "help/help_tree.h"

namespace {

constexpr HelpLine kGet{"GET <fileName> - Load a program."};
constexpr HelpLine kSave{"SAVE <fileName>[nolinenumbers] - Save loaded program."};
constexpr HelpLine kList{"LIST [<start#> [<end#>]] - List loaded program."};
constexpr HelpLine kRun{"RUN - Run loaded program."};
constexpr HelpLine kDel{"DEL <start#> [<end#>] - Delete Lines in loaded program."};
constexpr HelpLine kScr{"SCR - Scratch loaded program."};
constexpr HelpLine kLen{"LEN - Bytes used by loaded program."};
constexpr HelpLine kBye{"BYE - Exit Basic."};
constexpr HelpLine kCls{"CLS - Clear screen."};
constexpr HelpLine kHelp{"Help [<keyword>] - Display help."};

constexpr HelpEntry kCommandEntries[] = {
    {"GET", &kGet}, {"SAVE", &kSave}, {"LIST", &kList}, {"RUN", &kRun}, {"DEL", &kDel},
    {"SCR", &kScr}, {"LEN", &kLen},   {"BYE", &kBye},   {"CLS", &kCls}, {"HELP", &kHelp},
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
