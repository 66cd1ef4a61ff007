// Drives the line reader on a real terminal: echoes each line in brackets until EOF or BYE.
#include <cstring>

#include "console/console.h"
#include "platform/signals.h"

int main() {
  InstallConsole(MakeProcessConsole());
  InstallSignalHandlers(false);
  Console& con = TheConsole();
  char line[Console::kLineMax + 1];
  for (;;) {
    con.Write("> ");
    int n = con.ReadLine(line);
    if (n == Console::kEndOfInput) break;
    if (n == Console::kBreakRead) {
      con.Write("\nBREAK\n");
      continue;
    }
    if (n < 0) continue;
    con.Printf("[%s]\n", line);
    if (std::strcmp(line, "BYE") == 0) break;
  }
  con.Flush();
  return 0;
}
