// libFuzzer target: any bytes as the rest of a HELP command line. The answer is one
// of the tree's texts or the "No help" message, and never grows without bound.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "console/console.h"
#include "help/help_tree.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string line(reinterpret_cast<const char*>(data), size);
  line = line.substr(0, line.find('\0'));  // a typed line holds no NUL
  if (line.size() > Console::kLineMax) return 0;
  // The console writes into a string for the whole run; the old one is back at exit.
  struct Capture {
    std::string out;
    std::unique_ptr<Console> old = InstallConsole(MakeStringConsole(&out, ""));
    ~Capture() { InstallConsole(std::move(old)); }
  };
  static Capture capture;
  capture.out.clear();
  ShowHelp(line, TheConsole());
  TheConsole().Flush();
  if (capture.out.size() > 64 * 1024) std::abort();  // HELP alone prints a few kilobytes
  return 0;
}
