#include "platform/signals.h"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "platform/async_flag.h"
#include "platform/terminal_restore.h"

namespace {

volatile sig_atomic_t g_endSignal = 0;  // the signal that asked the process to end
bool g_outputLossEnds = false;
void (*g_flush)() = nullptr;
void (*g_flushFiles)() = nullptr;

void OnInterrupt(int) { g_breakFlag.fetch_or(async::kBreak, std::memory_order_relaxed); }

// The first ending signal is left to the main thread, so that output is flushed
// between statements; a second one ends the process at once.
void OnEnd(int sig) {
  if (g_endSignal) {
    RestoreTerminal();
    signal(sig, SIG_DFL);
    raise(sig);
    return;
  }
  g_endSignal = sig;
  g_breakFlag.fetch_or(async::kEnd, std::memory_order_relaxed);
}

void OnFlushTimer(int) { g_breakFlag.fetch_or(async::kFlushDue, std::memory_order_relaxed); }

void Handle(int sig, void (*handler)(int), int flags) {
  struct sigaction sa = {};
  sa.sa_handler = handler;
  sigemptyset(&sa.sa_mask);
  sa.sa_flags = flags;
  sigaction(sig, &sa, nullptr);
}

void RequestEnd(int sig) {
  if (g_endSignal) return;
  g_endSignal = sig;
  g_breakFlag.fetch_or(async::kEnd, std::memory_order_relaxed);
}

[[noreturn]] void EndProcess() {
  int sig = g_endSignal ? g_endSignal : SIGTERM;
  if (g_flushFiles) g_flushFiles();
  if (g_flush) g_flush();
  RestoreTerminal();
  signal(sig, SIG_DFL);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, sig);
  sigprocmask(SIG_UNBLOCK, &set, nullptr);
  raise(sig);
  _exit(128 + sig);
}

}  // namespace

void InstallSignalHandlers(bool outputLossEnds) {
  g_outputLossEnds = outputLossEnds;
  Handle(SIGINT, OnInterrupt, SA_RESTART);
  // No SA_RESTART: a write blocked on a stalled reader returns, and gives up.
  for (int sig : {SIGTERM, SIGHUP}) {
    struct sigaction old = {};
    sigaction(sig, nullptr, &old);
    if (old.sa_handler == SIG_IGN) continue;  // e.g. SIGHUP under nohup stays ignored
    Handle(sig, OnEnd, 0);
  }
  signal(SIGPIPE, SIG_IGN);
  // A write past the file size limit (ulimit -f) fails with EFBIG and is
  // reported; the signal would end the process and lose the program.
  signal(SIGXFSZ, SIG_IGN);
}

void SetFlushHook(void (*flush)()) { g_flush = flush; }

void FlushOutput() {
  FlushFiles();
  if (g_flush) g_flush();
}

void SetFileFlushHook(void (*flush)()) { g_flushFiles = flush; }

void FlushFiles() {
  if (g_flushFiles) g_flushFiles();
}

BreakableWait::BreakableWait() {
  struct sigaction sa = {};
  if (sigaction(SIGINT, nullptr, &sa) != 0 || sa.sa_handler != OnInterrupt) return;
  sa.sa_flags &= ~SA_RESTART;
  changed_ = sigaction(SIGINT, &sa, nullptr) == 0;
}

BreakableWait::~BreakableWait() {
  if (changed_) Handle(SIGINT, OnInterrupt, SA_RESTART);
}

void OutputLost() {
  if (g_outputLossEnds) RequestEnd(SIGPIPE);
}

void ArmFlushTimer() {
  static bool installed = false;
  if (!installed) {
    installed = true;
    Handle(SIGALRM, OnFlushTimer, SA_RESTART);
  }
  g_flushTimerArmed = true;
  itimerval t = {};
  t.it_value.tv_usec = 100 * 1000;
  setitimer(ITIMER_REAL, &t, nullptr);
}

void HandleAsyncEvents(unsigned char events) {
  if (events & async::kEnd) EndProcess();
  if (events & async::kFlushDue) {
    g_flushTimerArmed = false;
    if (g_flush) g_flush();
  }
}

void PauseMs(uint64_t ms) {
#ifndef BASIC_FUZZ
  using namespace std::chrono;
  auto now = steady_clock::now();
  // Far beyond any lifetime, and safe from overflow in the clock's arithmetic.
  auto deadline = now + milliseconds(ms < (uint64_t{1} << 40) ? ms : uint64_t{1} << 40);
  while (now < deadline && !EndPending()) {
    std::this_thread::sleep_until(std::min(deadline, now + milliseconds(50)));
    now = steady_clock::now();
  }
#else
  (void)ms;
#endif
}
