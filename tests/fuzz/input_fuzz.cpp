// The INPUT item scanner on one typed line, then an INPUT statement with
// targets of every kind fed the same bytes as typed lines; inputs of odd
// length under the classic switch, whose signed numbers the scanner reads.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/dialect.h"
#include "fuzz_support.h"
#include "lex/input_scanner.h"
#include "platform/break_flag.h"
#include "program/program.h"
#include "program/run.h"

namespace {

std::unique_ptr<Program> g_prog;

void ScanOneLine(const char* data, size_t size) {
  char line[Console::kLineMax + 1];
  size_t n = size < Console::kLineMax ? size : Console::kLineMax;
  std::memcpy(line, data, n);
  line[n] = '\0';
  size_t length = std::strlen(line);
  InputScanner scanner;
  scanner.Start(line);
  for (size_t items = 0;; ++items) {
    unsigned cls = scanner.Next();
    if (scanner.Text().size() > length) std::abort();
    if (cls == item::kEnd) break;
    if (items > length + 1) std::abort();  // every item takes at least one character
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 16 * 1024) return -1;
  const char* text = reinterpret_cast<const char*>(data);
  g_classic = size % 2 == 1;
  ScanOneLine(text, size);

  fuzz::UseConsole(std::string_view(text, size));
  auto prog = std::make_unique<Program>();
  const char* lines[] = {
      "10 DIM C(3),D$[20],E$(2)[5]",
      "20 INPUT A,B$,C(2),D$[2,4],E$(1),F",
      "30 INPUT \"again\",A",
      "40 INPUT G$",
      "50 GOTO 20",
  };
  uint32_t number = 10;
  for (const char* line : lines) {
    SetParseError(0);
    prog->StartLine(line);
    prog->GetToken();
    auto parsed = prog->ParseLine();
    parsed.front()->SetNumber(number);
    number += 10;
    prog->Append(std::move(parsed));
  }
  SetParseError(0);
  if (!Link(*prog)) {
    g_fuzzBudget = fuzz::kStatementBudget;
    Run(*prog, true);
  }
  fuzz::ResetState();
  return 0;
}
