// Output to a terminal: the model decides every position, the terminal only shows it.
#include <errno.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "console/console_backend.h"
#include "console/ecma48_screen.h"
#include "console/key_source.h"
#include "platform/break_flag.h"
#include "platform/signals.h"
#include "platform/terminal_restore.h"

namespace {

// Asks the terminal where its cursor is; false when it does not answer in time.
bool QueryCursor(int inFd, int outFd, int* x, int* y) {
  // A background job may neither change the modes nor read the answer.
  if (!isatty(inFd) || !TerminalInForeground(inFd)) return false;
  termios saved;
  if (tcgetattr(inFd, &saved) != 0) return false;
  termios raw = saved;
  raw.c_lflag &= ~(ICANON | ECHO);
  raw.c_cc[VMIN] = 0;
  raw.c_cc[VTIME] = 0;
  tcsetattr(inFd, TCSANOW, &raw);
  bool ok = false;
  if (write(outFd, "\x1b[6n", 4) == 4) {
    // Keys typed meanwhile arrive around the reply; all but the reply is kept.
    std::string got;
    pollfd pfd{inFd, POLLIN, 0};
    while (!ok && got.size() < 256 && poll(&pfd, 1, 300) > 0) {
      char c;
      if (read(inFd, &c, 1) != 1) break;
      got += c;
      if (c != 'R') continue;
      size_t esc = got.rfind('\x1b');
      int row, col, end = 0;
      if (esc != std::string::npos &&
          sscanf(got.c_str() + esc, "\x1b[%d;%dR%n", &row, &col, &end) == 2 &&
          esc + static_cast<size_t>(end) == got.size()) {
        *x = col - 1;
        *y = row - 1;
        got.resize(esc);
        ok = true;
      }
    }
    KeepTypedAhead(got);
  }
  tcsetattr(inFd, TCSANOW, &saved);
  return ok;
}

class TerminalBackend final : public Ecma48Screen<TerminalBackend> {
 public:
  explicit TerminalBackend(int fd) : fd_(fd) {
    RegisterTerminalOutput(fd);
    resizeSeen_ = TerminalResizeCount();
    contSeen_ = movedSeen_ = TerminalContinueCount();
    QuerySize(&cols_, &rows_);
  }
  ~TerminalBackend() override { Drain(); }

  void InitialCursor(int* x, int* y) override {
    *x = 0;
    *y = rows_ - 1;
    if (QueryCursor(STDIN_FILENO, fd_, x, y)) {
      if (*x >= cols_) *x = cols_ - 1;
      if (*y >= rows_) *y = rows_ - 1;
      tcx_ = *x;
      tcy_ = *y;
    }
  }
  // After a suspend the shell wrote its own lines: ask where the cursor is now.
  bool Moved(int* x, int* y) override {
    unsigned seen = TerminalContinueCount();
    if (seen == movedSeen_) return false;
    movedSeen_ = seen;
    resizeSeen_ = ~resizeSeen_;  // the size may have changed as well
    int qx = 0, qy = rows_ - 1;
    if (!QueryCursor(STDIN_FILENO, fd_, &qx, &qy)) return false;
    *x = qx < cols_ ? qx : cols_ - 1;
    *y = qy < rows_ ? qy : rows_ - 1;
    tcx_ = *x;
    tcy_ = *y;
    return true;
  }
  bool Resized(int* cols, int* rows) override {
    unsigned seen = TerminalResizeCount();
    if (seen == resizeSeen_) return false;
    resizeSeen_ = seen;
    tcx_ = tcy_ = -1;
    QuerySize(&cols_, &rows_);
    *cols = cols_;
    *rows = rows_;
    return true;
  }

  // A user sees each line as soon as it ends.
  void LineFeed() override { Drain(); }

 private:
  friend class Ecma48Screen<TerminalBackend>;

  void QuerySize(int* cols, int* rows) {
    winsize ws = {};
    if (ioctl(fd_, TIOCGWINSZ, &ws) == 0 && ws.ws_col > 0 && ws.ws_row > 0) {
      *cols = ws.ws_col;
      *rows = ws.ws_row;
    } else {
      *cols = 80;
      *rows = 24;
    }
  }

  // After a suspend the terminal was reset: show everything again.
  void Sync() {
    unsigned seen = TerminalContinueCount();
    if (seen == contSeen_) return;
    contSeen_ = seen;
    Forget();
  }

  void Changed(bool changed) { SetTerminalOutputChanged(changed); }
  void Pending() { NoteOutputPending(); }

  void Drain() {
    const char* p = buf_;
    size_t left = gone_ ? 0 : n_;
    while (left > 0) {
      ssize_t w = write(fd_, p, left);
      if (w > 0) {
        p += w;
        left -= static_cast<size_t>(w);
      } else if (w < 0 && errno == EAGAIN) {
        pollfd pfd{fd_, POLLOUT, 0};
        poll(&pfd, 1, 100);
      } else if (w < 0 && errno == EINTR && !EndPending()) {
        continue;
      } else if (w < 0 && errno == EINTR) {
        break;
      } else {
        gone_ = true;  // a hung-up terminal: output is dropped until SIGHUP ends us
        break;
      }
    }
    n_ = 0;
  }

  int fd_;
  bool gone_ = false;
  unsigned resizeSeen_ = 0;
  unsigned contSeen_ = 0;
  unsigned movedSeen_ = 0;
};

}  // namespace

std::unique_ptr<ConsoleBackend> MakeTerminalBackend(int fd) {
  return std::make_unique<TerminalBackend>(fd);
}
