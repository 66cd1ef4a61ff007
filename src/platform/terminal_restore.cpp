#include "platform/terminal_restore.h"

#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

namespace {

int g_inFd = -1;
int g_outFd = -1;
termios g_saved;
termios g_raw;
volatile sig_atomic_t g_rawOn = 0;          // a line is being read: raw keys wanted
volatile sig_atomic_t g_modesChanged = 0;   // the terminal holds our raw modes now
volatile sig_atomic_t g_outputChanged = 0;  // colours or cursor visibility differ from the start
std::atomic<unsigned> g_continues{0};
std::atomic<unsigned> g_resizes{0};

constexpr char kResetOutput[] = "\x1b[0m\x1b[?25h";
// SIGTERM and SIGHUP are not here: they end the process through platform/signals.
constexpr int kFatalSignals[] = {SIGQUIT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// A process outside the terminal's foreground group that sets its modes is stopped
// by SIGTTOU: a background job leaves them to the job that owns the terminal.
bool InForeground(int fd) { return tcgetpgrp(fd) == getpgrp(); }

// Only what this process changed is put back, so a run that never read a key
// (a file run, a piped run, a background job) leaves the terminal untouched.
void Restore() {
  if (g_outFd >= 0 && g_outputChanged) {
    ssize_t ignored = write(g_outFd, kResetOutput, sizeof kResetOutput - 1);
    (void)ignored;
    g_outputChanged = 0;
  }
  if (g_inFd >= 0 && g_modesChanged && InForeground(g_inFd)) {
    tcsetattr(g_inFd, TCSANOW, &g_saved);
    g_modesChanged = 0;
  }
}

void ApplyRaw() {
  if (tcsetattr(g_inFd, TCSANOW, &g_raw) == 0) g_modesChanged = 1;
}

void OnFatal(int sig) {
  Restore();
  signal(sig, SIG_DFL);
  raise(sig);
}

void OnSuspend(int) {
  int saved = errno;
  Restore();
  signal(SIGTSTP, SIG_DFL);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGTSTP);
  sigprocmask(SIG_UNBLOCK, &set, nullptr);
  raise(SIGTSTP);
  // Resumed: the handler comes back, and SIGCONT reapplies the modes.
  struct sigaction sa = {};
  sa.sa_handler = OnSuspend;
  sigemptyset(&sa.sa_mask);
  sa.sa_flags = SA_RESTART;
  sigaction(SIGTSTP, &sa, nullptr);
  errno = saved;
}

void OnContinue(int) {
  int saved = errno;
  // Resumed by fg while a line is read: raw keys again. Resumed by bg: nothing yet.
  if (g_rawOn && g_inFd >= 0 && InForeground(g_inFd)) ApplyRaw();
  g_continues.fetch_add(1, std::memory_order_relaxed);
  errno = saved;
}

void OnResize(int) { g_resizes.fetch_add(1, std::memory_order_relaxed); }

void Handle(int sig, void (*handler)(int), int flags) {
  struct sigaction sa = {};
  sa.sa_handler = handler;
  sigemptyset(&sa.sa_mask);
  sa.sa_flags = flags;
  sigaction(sig, &sa, nullptr);
}

void InstallOnce() {
  static bool done = false;
  if (done) return;
  done = true;
  for (int sig : kFatalSignals) {
    struct sigaction old = {};
    sigaction(sig, nullptr, &old);
    if (old.sa_handler == SIG_IGN) continue;  // e.g. SIGHUP under nohup stays ignored
    Handle(sig, OnFatal, SA_RESETHAND | SA_NODEFER);
  }
  Handle(SIGTSTP, OnSuspend, SA_RESTART);
  Handle(SIGCONT, OnContinue, SA_RESTART);
  Handle(SIGWINCH, OnResize, SA_RESTART);
  std::atexit(Restore);
}

}  // namespace

void RegisterTerminalInput(int fd) {
  if (tcgetattr(fd, &g_saved) != 0) return;
  g_raw = g_saved;
  g_raw.c_lflag &= ~(ICANON | ECHO | ECHONL | IEXTEN);
  g_raw.c_lflag |= ISIG;
  g_raw.c_cc[VMIN] = 1;
  g_raw.c_cc[VTIME] = 0;
  g_inFd = fd;
  InstallOnce();
}

void RegisterTerminalOutput(int fd) {
  g_outFd = fd;
  InstallOnce();
}

void SetRawInput(bool on) {
  if (g_inFd < 0) return;
  g_rawOn = on;
  if (!InForeground(g_inFd)) return;  // a later fg applies it (OnContinue)
  if (on)
    ApplyRaw();
  else if (g_modesChanged && tcsetattr(g_inFd, TCSANOW, &g_saved) == 0)
    g_modesChanged = 0;
}

bool TerminalInForeground(int fd) { return InForeground(fd); }

void SetTerminalOutputChanged(bool changed) { g_outputChanged = changed; }

void RestoreTerminal() { Restore(); }

unsigned TerminalContinueCount() { return g_continues.load(std::memory_order_relaxed); }
unsigned TerminalResizeCount() { return g_resizes.load(std::memory_order_relaxed); }
