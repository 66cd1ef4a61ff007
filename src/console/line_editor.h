// The template editor: the last line entered is kept, and function keys copy from it.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "console/console.h"
#include "console/line_history.h"

namespace key {
constexpr int kEnter = 13;
constexpr int kEscape = 27;
constexpr int kBackspace = 8;
constexpr int kPrefixed = 256;  // an unknown prefixed key: ignored
constexpr int kF1 = 315, kF2 = 316, kF3 = 317, kF4 = 318, kF5 = 319;
constexpr int kUp = 328, kLeft = 331, kRight = 333, kDown = 336, kIns = 338, kDel = 339;
}  // namespace key

class LineEditor final {
 public:
  explicit LineEditor(Console& con) : con_(con) {}

  // Starts a line. The text is put on it as if typed and made the template,
  // ready for the editing keys; with escapeEnds, Escape ends the line unstored.
  void Start(char* line, std::string_view text = {}, bool escapeEnds = false);
  // Handles one key; true when it ended the line (its length is then Length()).
  bool Handle(int key);
  int Length() const { return len_; }
  bool Abandoned() const { return abandoned_; }  // the line ended by Escape
  // Enters a whole line as if typed: echo, then Enter.
  void Enter(const char* text, int n);
  LineHistory& History() { return history_; }

 private:
  void Append(char c);
  void CopyOne();
  void Search(int key);
  void AdvanceTemplate() {
    if (pos_ < tlen_) ++pos_;
  }
  void Finish(bool keepEmpty);
  void Erase();  // removes the last character, as Backspace does
  // Up and Down: replaces the line by an older or newer one, as if it were typed.
  void Browse(int step);

  Console& con_;
  char* line_ = nullptr;
  int len_ = 0;
  char template_[Console::kLineMax + 1] = {};
  int tlen_ = 0;
  int pos_ = 0;
  int anchor_ = 0;
  bool full_ = false;
  bool insert_ = false;
  bool escapeEnds_ = false;
  bool abandoned_ = false;
  int searching_ = 0;  // F2 or F4 while their search key is awaited
  char lastF2_ = 0;
  char lastF4_ = 0;
  LineHistory history_;
  size_t browse_ = 0;  // the history line shown; History().Size() for the line being typed
  std::string draft_;  // the line being typed, while history lines are shown
};
