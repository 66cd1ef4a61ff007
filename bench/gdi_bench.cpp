// Drawing cost of the graphics statements: a program of 100,000 LINETO into a
// 640 by 480 window and one UPDATE, linked once and run per iteration, with
// the window headless and through the window thread (SDL's invisible driver).
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "gdi/gdi.h"
#include "program/program.h"
#include "program/run.h"

namespace {

constexpr const char* kLines[] = {
    "10 WINDOW @1; 640,480",
    "20 FOR I=1 TO 100000",
    "30   LINETO @1; (I*37) MOD 640,(I*101) MOD 480",
    "40 NEXT I",
    "50 UPDATE @1",
};

std::unique_ptr<Program> Lines() {
  auto prog = std::make_unique<Program>();
  for (const char* text : kLines) {
    prog->StartLine(text);
    prog->GetToken();
    uint32_t number = std::strtoul(std::string(prog->Text()).c_str(), nullptr, 10);
    auto line = prog->ParseLine();
    line.front()->SetNumber(number);
    prog->Append(std::move(line));
  }
  return prog;
}

void DrawLines(benchmark::State& state, bool threaded) {
  setenv("SDL_VIDEODRIVER", "dummy", 1);
  gdi::SetHeadless(!threaded);
  auto prog = Lines();
  for (auto _ : state) {
    if (Link(*prog) || Run(*prog, true)) {
      state.SkipWithError("the program failed");
      break;
    }
  }
  if (threaded && !gdi::ThreadRunning()) state.SkipWithError("no window thread");
  state.SetItemsProcessed(state.iterations() * 100000);
  gdi::SetHeadless(false);
}

BENCHMARK_CAPTURE(DrawLines, headless, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DrawLines, window_thread, true)->Unit(benchmark::kMillisecond);

}  // namespace
