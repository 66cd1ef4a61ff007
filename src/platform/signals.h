// The process's signals: Ctrl+C breaks, SIGTERM and SIGHUP end the process
// cleanly at the main thread's next check, SIGPIPE never kills it.
#pragma once
#include <cstdint>

// Installs the handlers. In a command-line run, lost output ends the process
// quietly (as SIGPIPE would); the shell instead goes on with its input.
void InstallSignalHandlers(bool outputLossEnds);

// What flushes the process's output before it ends or when the flush timer is due.
void SetFlushHook(void (*flush)());
// Flushes the output now, so that it is seen during a wait that may be long;
// the files' output too.
void FlushOutput();
// What flushes the text files a run writes: before input is read, before a
// wait, and before the process ends on a signal.
void SetFileFlushHook(void (*flush)());
void FlushFiles();

// While one lives, Ctrl+C interrupts a blocking system call (EINTR) instead of
// letting it restart, so that a wait on another process can be broken.
class BreakableWait final {
 public:
  BreakableWait();
  ~BreakableWait();
  BreakableWait(const BreakableWait&) = delete;
  BreakableWait& operator=(const BreakableWait&) = delete;

 private:
  [[maybe_unused]] bool changed_ = false;  // unused where no signals exist (a web page)
};

// Standard output is gone (its reader closed it): ends a command-line run.
void OutputLost();

// Buffered output calls this when it holds bytes: within 100 ms the flush
// hook runs at the main thread's next break check.
inline bool g_flushTimerArmed = false;
void ArmFlushTimer();
inline void NoteOutputPending() {
  if (!g_flushTimerArmed) [[unlikely]]
    ArmFlushTimer();
}

// Acts on the events of the async flag other than a break: flushes output, or
// ends the process. The main thread calls it from its break test.
void HandleAsyncEvents(unsigned char events);

// Sleeps ms milliseconds in short slices; an ending signal cuts it short.
void PauseMs(uint64_t ms);
