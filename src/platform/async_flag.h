// The one datum that crosses from signal handlers to the main thread: a break
// (Ctrl+C), a due output flush, or a signal that ends the process. The handlers
// only set bits here; break_flag.h tests them between statements. TRACE keeps a
// bit here too, so that the run loop's one test per statement serves it as well.
#pragma once
#include <atomic>

namespace async {
constexpr unsigned char kBreak = 1;     // SIGINT
constexpr unsigned char kFlushDue = 2;  // buffered output has waited its 100 ms
constexpr unsigned char kEnd = 4;       // SIGTERM, SIGHUP, or output lost in a command-line run
constexpr unsigned char kTrace = 8;     // TRACE ON: set and cleared by the main thread only
}  // namespace async

inline std::atomic<unsigned char> g_breakFlag{0};

// True when an ending signal waits: long waits give up early.
inline bool EndPending() {
  return (g_breakFlag.load(std::memory_order_relaxed) & async::kEnd) != 0;
}
