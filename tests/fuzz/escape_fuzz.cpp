// The escape interpreter: any bytes drawn on screens of any size keep the cursor
// and every cell written inside the screen. The same effects are also written as
// the ECMA-48 text the terminal and the web page are sent.
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "console/console.h"
#include "console/console_backend.h"
#include "console/ecma48_screen.h"
#include "console/key_source.h"

namespace {

// ECMA-48 text of a screen's effects, dropped as it is drained.
class TextScreen final : public Ecma48Screen<TextScreen> {
 public:
  TextScreen(int cols, int rows) {
    cols_ = cols;
    rows_ = rows;
  }

 private:
  friend class Ecma48Screen<TextScreen>;
  void Sync() {}
  void Pending() {}
  void Changed(bool) {}
  void Drain() { n_ = 0; }
};

// A screen buffer that refuses to be written outside itself.
class CheckedScreen final : public ConsoleBackend {
 public:
  CheckedScreen(int cols, int rows)
      : cols_(cols), rows_(rows), screen_(cols, rows), text_(cols, rows) {}
  void Size(int* cols, int* rows) override { screen_.Size(cols, rows); }
  void Draw(int x, int y, char c, uint16_t attr) override {
    Inside(x, y);
    screen_.Draw(x, y, c, attr);
    text_.Draw(x, y, c, attr);
  }
  void Fill(int x, int y, long count, uint16_t attr, bool setAttr) override {
    Inside(x, y);
    if (count < 0) std::abort();
    screen_.Fill(x, y, count, attr, setAttr);
    text_.Fill(x, y, count, attr, setAttr);
  }
  void ScrollUp(uint16_t attr) override {
    screen_.ScrollUp(attr);
    text_.ScrollUp(attr);
  }
  void SetAttr(uint16_t attr) override { screen_.SetAttr(attr); }
  void ShowCursor(bool visible) override {
    screen_.ShowCursor(visible);
    text_.ShowCursor(visible);
  }
  void SetTitle(const char* title) override {
    screen_.SetTitle(title);
    text_.SetTitle(title);
  }
  void Flush(int x, int y) override {
    Inside(x, y);
    screen_.Flush(x, y);
    text_.Flush(x, y);
  }

 private:
  void Inside(int x, int y) const {
    if (x < 0 || x >= cols_ || y < 0 || y >= rows_) std::abort();
  }
  int cols_, rows_;
  MemoryBackend screen_;
  TextScreen text_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2 || size > 64 * 1024) return -1;
  int cols = 1 + data[0] % 132, rows = 1 + data[1] % 60;
  Console con(std::make_unique<CheckedScreen>(cols, rows), MakeStringInput(""));
  // Bytes below 0x10 switch between the escape-aware and the plain put.
  bool plain = false;
  for (size_t i = 2; i < size; ++i) {
    char c = static_cast<char>(data[i]);
    if (data[i] == 0x0F) {
      plain = !plain;
      continue;
    }
    if (plain)
      con.PutPlain(c);
    else
      con.PutEsc(c);
    if (con.CursorX() < 0 || con.CursorX() >= cols || con.CursorY() < 0 || con.CursorY() >= rows)
      std::abort();
  }
  con.Flush();
  return 0;
}
