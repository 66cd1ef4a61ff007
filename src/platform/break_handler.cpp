#include "platform/break_handler.h"

#include <signal.h>

#include "platform/break_flag.h"

namespace {
void OnInterrupt(int) { g_breakFlag.store(1, std::memory_order_relaxed); }
}  // namespace

void InstallBreakHandler() {
  struct sigaction sa = {};
  sa.sa_handler = OnInterrupt;
  sigemptyset(&sa.sa_mask);
  sa.sa_flags = SA_RESTART;
  sigaction(SIGINT, &sa, nullptr);
}
