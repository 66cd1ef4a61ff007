// libFuzzer target: any bytes as a history file. The lines kept must be within the
// count asked for, each non-empty, without a line feed and no longer than a typed line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "console/console.h"
#include "shell/history_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  bool partial = data[0] & 1;
  size_t max = data[0] >> 1;
  std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  auto lines = HistoryLines(bytes, partial, max);
  if (lines.size() > max) std::abort();
  for (const auto& line : lines)
    if (line.empty() || line.size() > Console::kLineMax || line.find('\n') != std::string::npos)
      std::abort();
  return 0;
}
