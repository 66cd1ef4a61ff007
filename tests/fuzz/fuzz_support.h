// Shared by the fuzz targets: a console that discards its output, a scratch
// folder to work in, and the state every input starts from.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "console/console.h"
#include "console/console_backend.h"
#include "console/key_source.h"
#include "platform/break_flag.h"

namespace fuzz {

// Output a fuzzed run may write before a break is forced: a program may ask for a
// billion line feeds, and would get them, but not within the fuzzer's time limit.
constexpr uint64_t kOutputBudget = uint64_t{1} << 20;

// A stream without edges that counts what it is given and keeps nothing.
class NullBackend final : public ConsoleBackend {
 public:
  void Size(int* cols, int* rows) override {
    *cols = 0x7FFF;
    *rows = 0x7FFF;
  }
  void Draw(int, int, char, uint16_t) override { Count(); }
  void LineFeed() override { Count(); }
  void Fill(int, int, long, uint16_t, bool) override {}
  void ScrollUp(uint16_t) override {}
  void SetAttr(uint16_t) override {}
  void ShowCursor(bool) override {}
  void SetTitle(const char*) override {}
  void Flush(int, int) override {}

 private:
  void Count() {
    if (++bytes_ % kOutputBudget == 0)
      g_breakFlag.fetch_or(async::kBreak, std::memory_order_relaxed);
  }

  uint64_t bytes_ = 0;
};

// Installs a discarding console that reads input as piped lines.
inline void UseConsole(std::string_view input) {
  InstallConsole(
      std::make_unique<Console>(std::make_unique<NullBackend>(), MakeStringInput(input)));
}

// Moves into a private scratch folder, removed at exit: SAVE and GET stay there.
void EnterScratchFolder();

// Clears what one input may leave in the process-wide state.
void ResetState();

// Statements a fuzzed run may execute before it is broken off.
constexpr uint64_t kStatementBudget = 200000;

}  // namespace fuzz
