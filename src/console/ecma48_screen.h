// The screen model's effects as ECMA-48 text, for a terminal or a terminal widget:
// the model decides every position, the screen only shows it. Out, the back end
// that derives from this, supplies Sync() (called before each effect), Pending()
// (told that the buffer holds bytes again), Drain() (sends the n_ bytes of buf_ and
// empties it) and Changed(bool) (told whether colours or the cursor now differ from
// the start).
#pragma once
#include <cstdio>

#include "console/console_backend.h"

template <class Out>
class Ecma48Screen : public ConsoleBackend {
 public:
  void Size(int* cols, int* rows) override {
    *cols = cols_;
    *rows = rows_;
  }

  void Draw(int x, int y, char c, uint16_t attr) override {
    unsigned char uc = static_cast<unsigned char>(c);
    // The continuation bytes of a UTF-8 character belong to the cell its lead byte took.
    if ((uc & 0xC0) == 0x80 && lastHigh_) {
      Put(c);
      return;
    }
    Self().Sync();
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
    Self().Sync();
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
    Self().Sync();
    if (attr != shownAttr_) Sgr(attr);
    MoveTo(0, rows_ - 1);
    Put('\n');
    tcx_ = -1;
  }

  void SetAttr(uint16_t) override {}  // shown with the next cell drawn

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
    Self().Sync();
    if (x != tcx_ || y != tcy_) MoveTo(x, y);
    Self().Drain();
  }

 protected:
  // Nothing on the screen is known any more (a suspend reset the terminal): the
  // next effects position and colour explicitly.
  void Forget() {
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
  void NoteChanged() { Self().Changed(shownAttr_ != 0x07 || !cursorShown_); }

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
    if (n_ == 0) Self().Pending();
    if (n_ == sizeof buf_) Self().Drain();
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

  int cols_ = 80;
  int rows_ = 24;
  int tcx_ = -1;  // where the screen's cursor is, -1 when unknown
  int tcy_ = -1;
  size_t n_ = 0;
  char buf_[16 * 1024];

 private:
  Out& Self() { return static_cast<Out&>(*this); }

  // Colour bits (bit 0 blue, bit 1 green, bit 2 red) as an ECMA-48 colour number.
  static int AnsiColour(unsigned bits) {
    return ((bits & 4) ? 1 : 0) | ((bits & 2) ? 2 : 0) | ((bits & 1) ? 4 : 0);
  }

  uint16_t shownAttr_ = 0x07;
  bool cursorShown_ = true;
  bool lastHigh_ = false;
};
