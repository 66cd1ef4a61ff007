// The one datum that crosses from signal handlers to the main thread: a break
// (Ctrl+C), a due output flush, or a signal that ends the process.
#pragma once
#include <atomic>
#include <cstdint>

namespace async {
constexpr unsigned char kBreak = 1;     // SIGINT
constexpr unsigned char kFlushDue = 2;  // buffered output has waited its 100 ms
constexpr unsigned char kEnd = 4;       // SIGTERM, SIGHUP, or output lost in a command-line run
}  // namespace async

inline std::atomic<unsigned char> g_breakFlag{0};

#ifdef BASIC_FUZZ
// Statements a fuzzed run may still execute before a break is forced; 0 is no limit.
inline uint64_t g_fuzzBudget = 0;
#endif

// Acts on the events other than a break: flushes output, or ends the process.
void HandleAsyncEvents(unsigned char events);

// True (and the flag cleared) when a break was requested since the last test;
// the other events are acted on here, where the main thread may safely do so.
inline bool TestAndClearBreak() {
  unsigned char events = g_breakFlag.exchange(0, std::memory_order_relaxed);
  if (events & ~async::kBreak) [[unlikely]]
    HandleAsyncEvents(events);
  return (events & async::kBreak) != 0;
}

// True when any event waits; the run loop's one test per statement.
inline bool BreakPending() {
#ifdef BASIC_FUZZ
  if (g_fuzzBudget && --g_fuzzBudget == 0) {
    g_fuzzBudget = 1;  // every later statement breaks at once
    g_breakFlag.fetch_or(async::kBreak, std::memory_order_relaxed);
  }
#endif
  return g_breakFlag.load(std::memory_order_relaxed) != 0;
}

// True when Ctrl+C or an ending signal waits: long loops inside a statement stop.
inline bool StopPending() {
  return (g_breakFlag.load(std::memory_order_relaxed) & (async::kBreak | async::kEnd)) != 0;
}

// True when an ending signal waits: long waits give up early.
inline bool EndPending() {
  return (g_breakFlag.load(std::memory_order_relaxed) & async::kEnd) != 0;
}
