// The process's signals in a web page: there are none. The page sets the async
// flag's events itself (Ctrl+C, the output flush timer) and wakes the worker.
#include <chrono>

#include "platform/async_flag.h"
#include "platform/signals.h"
#include "platform/web_host.h"

namespace {

void (*g_flush)() = nullptr;
void (*g_flushFiles)() = nullptr;

// A terminal shows each line as it ends; the page gets the output in batches this often.
constexpr int kFlushMs = 25;

}  // namespace

void InstallSignalHandlers(bool) {}

void SetFlushHook(void (*flush)()) { g_flush = flush; }

void FlushOutput() {
  FlushFiles();
  if (g_flush) g_flush();
}

void SetFileFlushHook(void (*flush)()) { g_flushFiles = flush; }

void FlushFiles() {
  if (g_flushFiles) g_flushFiles();
}

// One program runs in a page: no other process holds a lock to wait for.
BreakableWait::BreakableWait() = default;
BreakableWait::~BreakableWait() = default;

void OutputLost() {}

void ArmFlushTimer() {
  g_flushTimerArmed = true;
  web::PostFlushTimer(kFlushMs);
}

void HandleAsyncEvents(unsigned char events) {
  if (events & async::kFlushDue) {
    g_flushTimerArmed = false;
    if (g_flush) g_flush();
  }
}

// A page cannot be sent a signal that ends a pause, so Ctrl+C does: it is the
// only way out of a long SLEEP short of reloading the page.
void PauseMs(uint64_t ms) {
  using namespace std::chrono;
  auto now = steady_clock::now();
  auto deadline = now + milliseconds(ms < (uint64_t{1} << 40) ? ms : uint64_t{1} << 40);
  while (now < deadline &&
         !(g_breakFlag.load(std::memory_order_relaxed) & (async::kBreak | async::kEnd))) {
    int32_t seen = web::TheShared().wake.load();
    web::WaitForPage(seen, duration_cast<milliseconds>(deadline - now).count() + 1);
    now = steady_clock::now();
  }
}
