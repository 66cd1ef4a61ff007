#include "console/console.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>

#include "console/console_backend.h"
#include "console/key_source.h"
#include "console/line_editor.h"
#include "console/web_backend.h"
#include "platform/signals.h"
#include "platform/terminal_restore.h"

namespace {

constexpr uint16_t kIntensity = 0x08;

// Escape colour numbers 0-7 (black, red, green, yellow, blue, magenta, cyan, white) as
// attribute colour bits (bit 0 blue, bit 1 green, bit 2 red).
constexpr uint16_t kColourBits[8] = {0, 4, 2, 6, 1, 5, 3, 7};

uint16_t SwapColours(uint16_t a) {
  return static_cast<uint16_t>((a & ~0x77) | ((a & 0x07) << 4) | ((a >> 4) & 0x07));
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int ToNumber(const char* digits, int n) {
  int v = 0;
  for (int i = 0; i < n; ++i)
    if (IsDigit(digits[i])) v = v * 10 + (digits[i] - '0');
  return v;
}

std::unique_ptr<Console> g_console;

}  // namespace

Console::Console(std::unique_ptr<ConsoleBackend> out, std::unique_ptr<KeySource> in)
    : out_(std::move(out)), in_(std::move(in)), editor_(std::make_unique<LineEditor>(*this)) {
  out_->Size(&cols_, &rows_);
  out_->InitialCursor(&x_, &y_);
  column_ = x_;
}

Console::~Console() { out_->FinalFlush(x_, y_); }

// ---- the model -----------------------------------------------------------------------------

void Console::Draw(char c) {
  out_->Draw(x_, y_, c, attr_);
  if (x_ + 1 < cols_)
    ++x_;
  else
    NewLine();
}

void Console::NewLine() {
  x_ = 0;
  LineDown();
}

void Console::LineDown() {
  CheckResize();
  if (y_ + 1 < rows_)
    ++y_;
  else if (scroll_)
    out_->ScrollUp(attr_);
}

void Console::CursorLeftWrap() {
  if (x_ > 0) {
    --x_;
  } else if (y_ > 0) {
    --y_;
    x_ = cols_ - 1;
  }
}

void Console::CheckResize() {
  if (out_->Moved(&x_, &y_)) column_ = x_;
  if (!out_->Resized(&cols_, &rows_)) return;
  if (x_ >= cols_) x_ = cols_ - 1;
  if (y_ >= rows_) y_ = rows_ - 1;
}

void Console::Erase(int x, int y, long count) {
  long left = static_cast<long>(rows_ - y) * cols_ - x;
  if (count > left) count = left;
  if (count > 0) out_->Fill(x, y, count, attr_, false);
}

void Console::ClearScreen() {
  x_ = 0;
  y_ = 0;
  Erase(0, 0, static_cast<long>(rows_) * cols_);
}

// ---- plain put -----------------------------------------------------------------------------

void Console::PutPlain(char c) {
  switch (c) {
    case '\r':
      column_ = 0;
      x_ = 0;
      out_->CarriageReturn();
      return;
    case '\n':
      column_ = 0;
      out_->LineFeed();
      NewLine();
      return;
    case '\t':
      ++column_;
      Draw(' ');
      return;
    case '\b':
      ++column_;
      CursorLeftWrap();
      return;
    default:
      ++column_;
      Draw(c);
  }
}

void Console::Write(std::string_view text) {
  for (char c : text) PutPlain(c);
}

void Console::Printf(const char* format, ...) {
  char buffer[260];
  va_list args, again;
  va_start(args, format);
  va_copy(again, args);
  int n = vsnprintf(buffer, sizeof buffer, format, args);
  va_end(args);
  if (n >= static_cast<int>(sizeof buffer)) {
    // A long file name or prompt: the message is never cut, its line end included.
    std::string longer(static_cast<size_t>(n) + 1, '\0');
    vsnprintf(longer.data(), longer.size(), format, again);
    va_end(again);
    longer.pop_back();
    Write(longer);
    return;
  }
  va_end(again);
  if (n > 0) Write(std::string_view(buffer, static_cast<size_t>(n)));
}

// ---- escape-aware put ----------------------------------------------------------------------

void Console::PutEsc(char c) {
  // The column counts every character but CR and LF, escape sequences included.
  if (c == '\r')
    column_ = 0;
  else if (c != '\n')
    ++column_;

  switch (esc_) {
    case kPlain:
      switch (c) {
        case '\b':
          CursorLeftWrap();
          return;
        case '\t':
          Draw(' ');
          return;
        case '\n':
          out_->LineFeed();
          LineDown();
          return;
        case '\r':
          x_ = 0;
          out_->CarriageReturn();
          return;
        case '\x1b':
          esc_ = kAfterEsc;
          return;
        default:
          Draw(c);
          return;
      }
    case kAfterEsc:
      EscAfterEsc(c);
      return;
    case kAfterBracket:
      EscAfterBracket(c);
      return;
    case kParams:
      EscParams(c);
      return;
    case kAddress:
      EscAddress(c);
      return;
  }
}

void Console::WriteEsc(std::string_view text) {
  for (char c : text) PutEsc(c);
}

void Console::EscAfterEsc(char c) {
  esc_ = kPlain;
  switch (c) {
    case 'A':
      if (y_ > 0) --y_;
      break;
    case 'B':
      if (y_ + 1 < rows_) ++y_;
      break;
    case 'C':
      if (x_ + 1 < cols_) ++x_;
      break;
    case 'D':
      if (x_ > 0) --x_;
      break;
    case 'E':
      ClearScreen();
      break;
    case 'F':
      esc_ = kAddress;
      nAddr_ = 0;
      break;
    case 'H':
      x_ = y_ = 0;
      break;
    case 'J':
      Erase(x_, y_, static_cast<long>(rows_ - y_ + 1) * cols_ - x_);
      break;
    case 'K':
      Erase(x_, y_, cols_ - x_);
      break;
    case '[':
      esc_ = kAfterBracket;
      break;
    default:
      Draw(c);
  }
}

void Console::EscAfterBracket(char c) {
  if (IsDigit(c)) {
    esc_ = kParams;
    nParams_ = 0;
    digits_[0] = c;
    nDigits_ = 1;
    return;
  }
  switch (c) {
    case 'A':
    case 'B':
    case 'C':
    case 'D':
      EscAfterEsc(c);
      return;
    case 'H':
    case 'f':
      x_ = y_ = 0;
      break;
    case 'J':
      Erase(x_, y_, static_cast<long>(rows_ - y_ + 1) * cols_ - x_);
      break;
    case 'K':
      Erase(x_, y_, cols_ - x_);
      break;
    default:
      Draw(c);
  }
  esc_ = kPlain;
}

void Console::EscAddress(char c) {
  if (IsDigit(c) || c == ' ') {
    addr_[nAddr_++] = c;
    if (nAddr_ < 6) return;
    esc_ = kPlain;
    int col = ToNumber(addr_, 3);
    int row = ToNumber(addr_ + 3, 3);
    if (col < cols_ && row < rows_) {
      x_ = col;
      y_ = row;
    }
    return;
  }
  esc_ = kPlain;
  Draw(c);
}

void Console::EscParams(char c) {
  if (IsDigit(c)) {
    if (nDigits_ < 4) {
      digits_[nDigits_++] = c;
      return;
    }
    esc_ = kPlain;  // a fifth digit ends the sequence and is text
    Draw(c);
    return;
  }
  // Close the number being collected; its digits stay for a following ";".
  if (nDigits_ > 0 && nParams_ < 12) params_[nParams_++] = ToNumber(digits_, nDigits_);
  if (c == ';') {
    if (nParams_ < 12) {
      // Each number followed by ";" is stored twice; attribute lists do not mind.
      params_[nParams_++] = ToNumber(digits_, nDigits_);
      nDigits_ = 0;
      return;
    }
    esc_ = kPlain;
    Draw(c);
    return;
  }
  esc_ = kPlain;
  switch (c) {
    case 'A':
    case 'B':
    case 'C':
    case 'D':
      if (nParams_ == 1)
        for (int i = 0; i < params_[0]; ++i) EscAfterEsc(c);
      return;
    case 'H':
    case 'f':
      if (nParams_ == 2) {
        if (params_[1] < cols_ && params_[0] < rows_) {
          x_ = params_[1];
          y_ = params_[0];
        }
        return;
      }
      break;
    case 'J':
      if (nParams_ == 1 && params_[0] == 2) {
        ClearScreen();
        return;
      }
      break;
    case 'K':
      if (nParams_ == 1 && params_[0] == 1) {
        Erase(0, y_, x_);
        return;
      }
      if (nParams_ == 1 && params_[0] == 2) {
        Erase(0, y_, cols_);
        return;
      }
      break;
    case 'm':
      ApplyAttributes();
      return;
    default:
      break;
  }
  Draw(c);
}

void Console::ApplyAttributes() {
  uint16_t work = attr_;
  bool reverse = reverse_;
  int cursor = -1;  // unchanged
  for (int i = 0; i < nParams_; ++i) {
    unsigned p = params_[i];
    if (p == 0) {
      work &= ~kIntensity;
      if (reverse) work = SwapColours(work), reverse = false;
    } else if (p == 1) {
      work |= kIntensity;
    } else if (p == 2 || p == 4 || p == 5 || p == 8 || p == 24 || p == 25) {
    } else if (p == 7) {
      if (!reverse) work = SwapColours(work), reverse = true;
    } else if (p == 22) {
      work &= ~kIntensity;
    } else if (p == 27) {
      if (reverse) work = SwapColours(work), reverse = false;
    } else if (p >= 30 && p <= 37) {
      uint16_t bits = kColourBits[p - 30];
      work = reverse ? (work & ~0x70) | (bits << 4) : (work & ~0x07) | bits;
    } else if (p >= 40 && p <= 47) {
      uint16_t bits = kColourBits[p - 40];
      work = reverse ? (work & ~0x07) | bits : (work & ~0x70) | (bits << 4);
    } else if (p == 80 || p == 81) {
      cursor = p == 81;
    } else {
      Draw('m');  // unknown attribute: the whole sequence is text and changes nothing
      return;
    }
  }
  attr_ = work;
  reverse_ = reverse;
  out_->SetAttr(attr_);
  if (cursor >= 0) out_->ShowCursor(cursor == 1);
}

// ---- the rest of the interface ---------------------------------------------------------------

LineHistory& Console::History() { return editor_->History(); }
bool Console::ReadsKeys() const { return !in_->DeliversLines(); }

int64_t Console::Column() const { return column_; }
int Console::Width() const { return width_; }
void Console::SetWidth(int width) { width_ = width; }
int Console::CursorX() const { return x_; }
int Console::CursorY() const { return y_; }

void Console::Cls() {
  CheckResize();
  x_ = 0;
  y_ = 0;
  column_ = 0;
  esc_ = kPlain;
  out_->Fill(0, 0, static_cast<long>(rows_) * cols_, attr_, true);
  out_->ShowCursor(true);
}

void Console::RestoreDefaults() {
  attr_ = defAttr_;
  reverse_ = false;
  out_->SetAttr(attr_);
  out_->ShowCursor(true);
}

void Console::SetTitle(const char* title) { out_->SetTitle(title); }

void Console::Flush() {
  CheckResize();
  out_->Flush(x_, y_);
}

// ---- the process console ---------------------------------------------------------------------

Console& TheConsole() {
  if (!g_console) g_console = MakeProcessConsole();
  return *g_console;
}

std::unique_ptr<Console> InstallConsole(std::unique_ptr<Console> console) {
  g_console.swap(console);
  return console;
}

namespace {
void FlushConsole() {
  if (g_console) g_console->Flush();
}
void FlushAtExit() {
  FlushConsole();
  RestoreTerminal();
}
}  // namespace

std::unique_ptr<Console> MakeProcessConsole() {
#ifdef __EMSCRIPTEN__
  // In a web page the page's terminal widget is the console.
  std::unique_ptr<KeySource> in = MakeWebKeys();
  std::unique_ptr<ConsoleBackend> out = MakeWebBackend();
#else
  bool outTty = isatty(STDOUT_FILENO) == 1;
  bool inTty = isatty(STDIN_FILENO) == 1;
  std::unique_ptr<KeySource> in =
      inTty ? MakeTerminalKeys(STDIN_FILENO) : MakePipedInput(STDIN_FILENO);
  std::unique_ptr<ConsoleBackend> out =
      outTty ? MakeTerminalBackend(STDOUT_FILENO) : MakeStreamBackend(STDOUT_FILENO);
#endif
  static bool registered = false;
  if (!registered) {
    registered = true;
    // Runs before the terminal restore the back ends registered, and before the console's
    // own static is destroyed.
    std::atexit(FlushAtExit);
    SetFlushHook(FlushConsole);
  }
  return std::make_unique<Console>(std::move(out), std::move(in));
}

std::unique_ptr<Console> MakeStringConsole(std::string* out, std::string_view input) {
  return std::make_unique<Console>(MakeStringBackend(out), MakeStringInput(input));
}
