// Typed lines through the shell: commands, program lines, RUN with a statement
// budget, SAVE and GET inside a scratch folder.
#include <cstdint>
#include <string_view>

#include "fuzz_support.h"
#include "platform/break_flag.h"
#include "shell/shell.h"

namespace {

// SAVE writes files: only names inside the scratch folder are let through.
bool SavesOutside(std::string_view text) {
  bool save = false, slash = false;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '/') slash = true;
    if ((c | 0x20) == 's' && i + 3 < text.size() && (text[i + 1] | 0x20) == 'a' &&
        (text[i + 2] | 0x20) == 'v' && (text[i + 3] | 0x20) == 'e')
      save = true;
  }
  return save && slash;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::EnterScratchFolder();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  if (size > 64 * 1024 || SavesOutside(input)) return -1;
  fuzz::UseConsole(input);
  g_fuzzBudget = fuzz::kStatementBudget;
  RunShell();
  fuzz::ResetState();
  return 0;
}
