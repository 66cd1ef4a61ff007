// Where the line reader's keys come from: a raw terminal, piped lines, or a test script.
#pragma once
#include <memory>
#include <string_view>

class KeySource {
 public:
  static constexpr int kNone = -1;  // nothing arrived within the wait
  static constexpr int kEnd = -3;   // the input is exhausted

  virtual ~KeySource() = default;
  // Brackets one line read: a terminal switches to raw keys and back.
  virtual void BeginLine() {}
  virtual void EndLine() {}
  // Waits up to timeoutMs for the next key code (bytes 0-255, prefixed keys 256 up).
  virtual int WaitKey(int timeoutMs) = 0;

  // Piped input delivers whole lines instead of keys.
  virtual bool DeliversLines() const { return false; }
  // Waits up to timeoutMs for a line: its length (line holds kLineMax + 1 bytes), or kNone, kEnd.
  virtual int WaitLine(char* /*line*/, int /*timeoutMs*/) { return kEnd; }
};

std::unique_ptr<KeySource> MakeTerminalKeys(int fd);
// Keys typed while the terminal backend waited for a reply to its own query:
// kept here and read before anything new, so typing ahead loses nothing.
void KeepTypedAhead(std::string_view bytes);
std::unique_ptr<KeySource> MakePipedInput(int fd);
std::unique_ptr<KeySource> MakeStringInput(std::string_view text);
