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
#include "console/key_source.h"
#include "platform/break_flag.h"
#include "platform/signals.h"
#include "platform/terminal_restore.h"

namespace {

// Colour bits (bit 0 blue, bit 1 green, bit 2 red) as an ECMA-48 colour number.
int AnsiColour(unsigned bits) {
  return ((bits & 4) ? 1 : 0) | ((bits & 2) ? 2 : 0) | ((bits & 1) ? 4 : 0);
}

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

class TerminalBackend final : public ConsoleBackend {
 public:
  explicit TerminalBackend(int fd) : fd_(fd) {
    RegisterTerminalOutput(fd);
    resizeSeen_ = TerminalResizeCount();
    contSeen_ = movedSeen_ = TerminalContinueCount();
    QuerySize(&cols_, &rows_);
  }
  ~TerminalBackend() override { Drain(); }

  void Size(int* cols, int* rows) override {
    *cols = cols_;
    *rows = rows_;
  }
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

  void Draw(int x, int y, char c, uint16_t attr) override {
    unsigned char uc = static_cast<unsigned char>(c);
    // The continuation bytes of a UTF-8 character belong to the cell its lead byte took.
    if ((uc & 0xC0) == 0x80 && lastHigh_) {
      Put(c);
      return;
    }
    Sync();
    if (attr != shownAttr_) Sgr(attr);
    if (x != tcx_ || y != tcy_) MoveTo(x, y);
    lastHigh_ = uc >= 0x80;
    if (uc == 7) {
      Put('\a');  // rings and does not move
      return;
    }
    Put(uc < 32 || uc == 127 ? ' ' : c);
    // At the last column the terminal waits to wrap; the next draw positions explicitly.
    tcx_ = x + 1 < cols_ ? x + 1 : -1;
  }

  void Fill(int x, int y, long count, uint16_t attr, bool) override {
    Sync();
    if (attr != shownAttr_) Sgr(attr);
    MoveTo(x, y);
    if (count >= static_cast<long>(rows_ - y) * cols_ - x) {
      Append("\x1b[J");
      return;
    }
    while (count > 0 && y < rows_) {
      long n = cols_ - x;
      if (n > count) n = count;
      if (x + n >= cols_)
        Append("\x1b[K");
      else
        Printf("\x1b[%ldX", n);
      count -= n;
      x = 0;
      if (count > 0) MoveTo(0, ++y);
    }
  }

  void ScrollUp(uint16_t attr) override {
    Sync();
    if (attr != shownAttr_) Sgr(attr);
    MoveTo(0, rows_ - 1);
    Put('\n');
    tcx_ = -1;
  }

  void SetAttr(uint16_t) override {}  // shown with the next cell drawn
  // A user sees each line as soon as it ends.
  void LineFeed() override { Drain(); }

  void ShowCursor(bool visible) override {
    if (visible == cursorShown_) return;
    cursorShown_ = visible;
    Append(visible ? "\x1b[?25h" : "\x1b[?25l");
    NoteChanged();
  }

  void SetTitle(const char* title) override {
    Append("\x1b]0;");
    for (const char* p = title; *p; ++p)
      if (static_cast<unsigned char>(*p) >= 32 && *p != 127) Put(*p);
    Put('\a');
  }

  void Flush(int x, int y) override {
    Sync();
    if (x != tcx_ || y != tcy_) MoveTo(x, y);
    Drain();
  }

 private:
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
    shownAttr_ = 0xFFFF;
    tcx_ = tcy_ = -1;
    if (!cursorShown_) Append("\x1b[?25l");
    NoteChanged();
  }

  void MoveTo(int x, int y) {
    if (x == 0 && tcy_ >= 0 && y == tcy_ + 1)
      Append("\r\n");
    else if (x == 0 && y == tcy_)
      Put('\r');
    else
      Printf("\x1b[%ld;%ldH", y + 1, x + 1);
    tcx_ = x;
    tcy_ = y;
  }

  // The exit resets colours and the cursor only when they differ from the start.
  void NoteChanged() { SetTerminalOutputChanged(shownAttr_ != 0x07 || !cursorShown_); }

  void Sgr(uint16_t attr) {
    shownAttr_ = attr;
    NoteChanged();
    if (attr == 0x07) {
      Append("\x1b[0m");  // the start-up colours are the terminal's own
      return;
    }
    int fg = AnsiColour(attr & 7) + ((attr & 8) ? 90 : 30);
    int bg = AnsiColour((attr >> 4) & 7) + 40;
    Printf("\x1b[0;%ld;%ldm", fg, bg);
  }

  void Put(char c) {
    if (n_ == 0) NoteOutputPending();
    if (n_ == sizeof buf_) Drain();
    buf_[n_++] = c;
  }
  void Append(const char* s) {
    while (*s) Put(*s++);
  }
  void Printf(const char* format, long a, long b = 0) {
    char tmp[32];
    snprintf(tmp, sizeof tmp, format, a, b);
    Append(tmp);
  }

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
  int cols_ = 80;
  int rows_ = 24;
  int tcx_ = -1;  // where the terminal's cursor is, -1 when unknown
  int tcy_ = -1;
  uint16_t shownAttr_ = 0x07;
  bool cursorShown_ = true;
  bool lastHigh_ = false;
  bool gone_ = false;
  unsigned resizeSeen_ = 0;
  unsigned contSeen_ = 0;
  unsigned movedSeen_ = 0;
  size_t n_ = 0;
  char buf_[16 * 1024];
};

}  // namespace

std::unique_ptr<ConsoleBackend> MakeTerminalBackend(int fd) {
  return std::make_unique<TerminalBackend>(fd);
}
