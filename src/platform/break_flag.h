// The one datum that crosses threads: set by SIGINT, polled by the main thread.
#pragma once
#include <atomic>

inline std::atomic<unsigned char> g_breakFlag{0};

// True (and the flag cleared) when a break was requested since the last test.
inline bool TestAndClearBreak() { return g_breakFlag.exchange(0, std::memory_order_relaxed) != 0; }
inline bool BreakPending() { return g_breakFlag.load(std::memory_order_relaxed) != 0; }
