// Entry point: the shell with no argument, a program run with one.
#include <cstdio>
#include <cstring>

#include "base/dialect.h"
#include "console/console.h"
#include "gdi/gdi.h"
#include "platform/signals.h"
#include "shell/shell.h"

namespace {

constexpr const char* kUsage =
    "Usage: basic [--classic] [--strict] [<program file>]\n"
    "Without a file, basic starts its interactive shell: type HELP there.\n"
    "With one, it loads, links and runs the program, then exits.\n"
    "  --classic     run old listings as classic systems did: their IMAGE formats,\n"
    "                FOR and NEXT, mixed brackets, substring stores (HELP CLASSIC)\n"
    "  --strict      a run that fails, or a file that does not load, exits with\n"
    "                status 1 and writes its error report to standard error\n"
    "  -h, --help    show this text\n"
    "  --version     show the version\n"
    "See basic(1) for the shell commands, the line editor and the files.\n";

}  // namespace

int main(int argc, char** argv) {
  // Options stand before the file name; anything else is the file, as it always was.
  bool strict = false;
  while (argc >= 2) {
    if (!std::strcmp(argv[1], "--classic"))
      g_classic = true;
    else if (!std::strcmp(argv[1], "--strict"))
      strict = true;
    else
      break;
    --argc;
    ++argv;
  }
  // Answered before the console takes the terminal.
  if (argc == 2 && (!std::strcmp(argv[1], "-h") || !std::strcmp(argv[1], "--help"))) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  if (argc == 2 && !std::strcmp(argv[1], "--version")) {
    std::printf("%s\n", kProductName);
    return 0;
  }
  InstallConsole(MakeProcessConsole());
  InstallSignalHandlers(argc == 2);
  int status;
  if (argc > 2) {
    PrintBanner();
    TheConsole().Write("\nUsage: Basic [<Src>]\n");
    status = -1;
  } else if (argc == 2) {
    status = RunFile(argv[1], strict);
  } else {
    status = RunShell();
  }
  gdi::Shutdown();  // windows close and the window thread ends before the process
  TheConsole().Flush();
  return status;
}
