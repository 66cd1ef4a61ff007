// Where the console model's effects go: a terminal, a byte stream, or a cell grid.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ConsoleBackend {
 public:
  virtual ~ConsoleBackend() = default;

  // Size the model starts with, and where its cursor starts.
  virtual void Size(int* cols, int* rows) = 0;
  virtual void InitialCursor(int* x, int* y) {
    *x = 0;
    *y = 0;
  }
  // True (and the new size stored) when the screen was resized since the last call.
  virtual bool Resized(int* /*cols*/, int* /*rows*/) { return false; }
  // True (and the cursor stored) when others wrote to the screen since the last
  // call, as a shell does while the process is suspended.
  virtual bool Moved(int* /*x*/, int* /*y*/) { return false; }

  virtual void Draw(int x, int y, char c, uint16_t attr) = 0;
  // The model moved on a carriage return or a line feed; only a stream writes these.
  virtual void CarriageReturn() {}
  virtual void LineFeed() {}
  // Blanks count cells from (x, y) in reading order; setAttr also paints them with attr.
  virtual void Fill(int x, int y, long count, uint16_t attr, bool setAttr) = 0;
  // The whole screen up one line, the freed bottom line blank in attr.
  virtual void ScrollUp(uint16_t attr) = 0;
  virtual void SetAttr(uint16_t attr) = 0;
  virtual void ShowCursor(bool visible) = 0;
  virtual void SetTitle(const char* title) = 0;
  // Places the visible cursor and pushes buffered output out.
  virtual void Flush(int cursorX, int cursorY) = 0;
  // Last flush at exit: nothing may stay pending.
  virtual void FinalFlush(int cursorX, int cursorY) { Flush(cursorX, cursorY); }
};

struct Cell {
  char ch = ' ';
  uint16_t attr = 0x07;
};

// A screen buffer in memory, for tests.
class MemoryBackend final : public ConsoleBackend {
 public:
  MemoryBackend(int cols, int rows, uint16_t attr = 0x07);

  void Size(int* cols, int* rows) override;
  void Draw(int x, int y, char c, uint16_t attr) override;
  void Fill(int x, int y, long count, uint16_t attr, bool setAttr) override;
  void ScrollUp(uint16_t attr) override;
  void SetAttr(uint16_t attr) override { attr_ = attr; }
  void ShowCursor(bool visible) override { cursorVisible_ = visible; }
  void SetTitle(const char* title) override { title_ = title; }
  void Flush(int x, int y) override {
    flushX_ = x;
    flushY_ = y;
  }

  const Cell& At(int x, int y) const { return cells_[static_cast<size_t>(y) * cols_ + x]; }
  std::string Row(int y) const;  // the characters of one row, trailing blanks removed
  uint16_t Attr() const { return attr_; }
  bool CursorVisible() const { return cursorVisible_; }
  const std::string& Title() const { return title_; }

 private:
  int cols_;
  int rows_;
  uint16_t attr_;
  bool cursorVisible_ = true;
  int flushX_ = 0;
  int flushY_ = 0;
  std::string title_;
  std::vector<Cell> cells_;
};

// Bytes of what is drawn, to a file descriptor or appended to a string.
std::unique_ptr<ConsoleBackend> MakeStreamBackend(int fd);
std::unique_ptr<ConsoleBackend> MakeStringBackend(std::string* out);
// ECMA-48 output to a terminal on fd.
std::unique_ptr<ConsoleBackend> MakeTerminalBackend(int fd);
