// Program files through the loader, the numbering of unnumbered lines, the
// link and a run bounded by a statement budget, with the classic switch on for
// half of them; then the listing must read back to itself.
#include <sys/mman.h>
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/dialect.h"
#include "fuzz_support.h"
#include "platform/break_flag.h"
#include "program/loader.h"
#include "program/program.h"
#include "program/run.h"

namespace {

std::unique_ptr<Program> Load(const char* bytes, size_t size) {
  int fd = memfd_create("fuzz.bas", 0);
  if (fd < 0) std::abort();
  for (size_t done = 0; done < size;) {
    ssize_t w = write(fd, bytes + done, size - done);
    if (w <= 0) std::abort();
    done += static_cast<size_t>(w);
  }
  SourceFile file;
  std::string path = "/proc/self/fd/" + std::to_string(fd);
  if (!file.Open(path.c_str())) std::abort();
  close(fd);
  auto prog = LoadProgram(file, "fuzz.bas", true);
  prog->NumberUnnumbered();
  return prog;
}

bool SameButCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(a[i])) !=
        std::tolower(static_cast<unsigned char>(b[i])))
      return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::EnterScratchFolder();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 256 * 1024) return -1;
  fuzz::UseConsole("");
  // Inputs of odd length load, link, run and read back under the classic switch.
  bool classic = size % 2 == 1;
  g_classic = classic;
  auto prog = Load(reinterpret_cast<const char*>(data), size);
  ErrorCode stop = g_err.parse;
  std::string saved = SavedText(*prog, true);
  if (prog->BadLines() == 0 && (stop == 0 || stop == err::kEndOfFile)) {
    if (!Link(*prog)) {
      g_fuzzBudget = fuzz::kStatementBudget;
      Run(*prog, true);
      g_fuzzBudget = 0;
    }
  }
  fuzz::ResetState();
  // What SAVE wrote, GET reads back the same, unless the load stopped early. A name
  // keeps the case of its first use, which may lie in a line that lists in another
  // form (a remark run into REM, GO TO): the first reading may change only that case,
  // and from there on the text stays as it is.
  if (stop == 0 || stop == err::kEndOfFile) {
    g_classic = classic;
    auto again = Load(saved.data(), saved.size());
    std::string back = SavedText(*again, true);
    if (back != saved) {
      if (!SameButCase(back, saved)) std::abort();
      fuzz::ResetState();
      g_classic = classic;
      auto third = Load(back.data(), back.size());
      if (SavedText(*third, true) != back) std::abort();
    }
  }
  fuzz::ResetState();
  return 0;
}
