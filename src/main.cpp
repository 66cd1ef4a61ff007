// Entry point: the shell with no argument, a program run with one.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/dialect.h"
#include "console/console.h"
#include "gdi/gdi.h"
#include "platform/host_files.h"
#include "platform/signals.h"
#include "shell/shell.h"

namespace {

constexpr const char* kUsage =
    "Usage: basic [--classic] [--strict] [--sandbox DIR] [<program file>]\n"
    "Without a file, basic starts its interactive shell: type HELP there.\n"
    "With one, it loads, links and runs the program, then exits.\n"
    "  --classic     run old listings as classic systems did: their IMAGE formats,\n"
    "                FOR and NEXT, mixed brackets, substring stores (HELP CLASSIC)\n"
    "  --strict      a run that fails, or a file that does not load, exits with\n"
    "                status 1 and writes its error report to standard error\n"
    "  --sandbox DIR every file the program or the shell opens, creates, removes\n"
    "                or chains to must lie in DIR or below it (also BASIC_SANDBOX)\n"
    "  -h, --help    show this text\n"
    "  --version     show the version\n"
    "See basic(1) for the shell commands, the line editor and the files.\n";

}  // namespace

int main(int argc, char** argv) {
  // Options stand before the file name; anything else is the file, as it always was.
  bool strict = false;
  const char* sandbox = std::getenv("BASIC_SANDBOX");
  while (argc >= 2) {
    int used = 1;
    if (!std::strcmp(argv[1], "--classic")) {
      g_classic = true;
    } else if (!std::strcmp(argv[1], "--strict")) {
      strict = true;
    } else if (!std::strcmp(argv[1], "--sandbox")) {
      if (argc < 3) {
        std::fputs("basic: --sandbox needs a folder\n", stderr);
        return 2;
      }
      sandbox = argv[2];
      used = 2;
    } else if (!std::strncmp(argv[1], "--sandbox=", 10)) {
      sandbox = argv[1] + 10;
    } else {
      break;
    }
    argc -= used;
    argv += used;
  }
  // A sandbox that cannot be set up is no reason to run unconfined.
  if (sandbox && *sandbox) {
    if (int error = host::SetSandbox(sandbox)) {
      std::fprintf(stderr, "basic: cannot use %s as the sandbox: %s\n", sandbox,
                   std::strerror(error));
      return 2;
    }
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
