// Entry point: the shell with no argument, a program run with one.
#include "console/console.h"
#include "platform/break_handler.h"
#include "shell/shell.h"

int main(int argc, char** argv) {
  InstallConsole(MakeProcessConsole());
  InstallBreakHandler();
  int status;
  if (argc > 2) {
    PrintBanner();
    TheConsole().Write("\nUsage: Basic [<Src>]\n");
    status = -1;
  } else if (argc == 2) {
    status = RunFile(argv[1]);
  } else {
    status = RunShell();
  }
  TheConsole().Flush();
  return status;
}
