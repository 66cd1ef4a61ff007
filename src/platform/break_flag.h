// The main thread's tests of the async flag: a break ends the statement or the
// run, the other events are acted on where the main thread may safely do so.
#pragma once
#include <atomic>
#include <cstdint>

#include "platform/async_flag.h"
#include "platform/signals.h"

#ifdef BASIC_FUZZ
// Statements a fuzzed run may still execute before a break is forced; 0 is no limit.
inline uint64_t g_fuzzBudget = 0;
#endif

// True (and the flag cleared) when a break was requested since the last test;
// the other events are acted on here.
inline bool TestAndClearBreak() {
  unsigned char events = g_breakFlag.fetch_and(async::kTrace, std::memory_order_relaxed);
  if (events & ~(async::kBreak | async::kTrace)) [[unlikely]]
    HandleAsyncEvents(events);
  return (events & async::kBreak) != 0;
}

// TRACE ON and OFF. While on, every test of the run loop finds an event, and the
// loop prints the number of each statement before it runs.
inline void SetTracing(bool on) {
  if (on)
    g_breakFlag.fetch_or(async::kTrace, std::memory_order_relaxed);
  else
    g_breakFlag.fetch_and(static_cast<unsigned char>(~async::kTrace), std::memory_order_relaxed);
}
inline bool Tracing() { return (g_breakFlag.load(std::memory_order_relaxed) & async::kTrace) != 0; }

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
