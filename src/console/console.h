// The process-wide console: its own screen model, the escape interpreter that
// PRINT output goes through, the plain path for the system's messages, and the
// line reader with its template editor.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/print_sink.h"

class ConsoleBackend;
class KeySource;
class LineEditor;
class LineHistory;

class Console final : public PrintSink {
 public:
  // Line reader results below zero.
  static constexpr int kBreakRead = -1;   // Ctrl+C while waiting; run error set to kBreak
  static constexpr int kTimedOut = -2;    // the timed variant's deadline passed
  static constexpr int kEndOfInput = -3;  // standard input is exhausted
  static constexpr int kAbandoned = -4;   // Escape, where EditLine reads
  static constexpr int kLineMax = 2047;   // characters a line may hold

  Console(std::unique_ptr<ConsoleBackend> out, std::unique_ptr<KeySource> in);
  ~Console();

  // Escape-aware put, used by PRINT and PRINT USING.
  void PutEsc(char c);
  void WriteEsc(std::string_view text);
  void Print(char c) override { PutEsc(c); }
  void Print(std::string_view text) override { WriteEsc(text); }
  // Plain put, used for the system's own messages, listings and help.
  void PutPlain(char c);
  void Write(std::string_view text);
  // Formats and writes through the plain put; long results are never cut.
  void Printf(const char* format, ...) __attribute__((format(printf, 2, 3)));

  int64_t Column() const override;  // characters written since the last carriage return
  int Width() const override;       // line width for PRINT; 0 is unlimited
  void SetWidth(int width);
  int CursorX() const override;  // the model cursor's true column
  int CursorY() const;
  uint16_t Attribute() const { return attr_; }
  int Columns() const { return cols_; }
  int Rows() const { return rows_; }
  ConsoleBackend& Backend() { return *out_; }

  void Cls();              // blank the screen, home the cursor, show it
  void RestoreDefaults();  // default attribute and visible cursor, at the end of a run
  void SetTitle(const char* title);
  void Flush();  // push buffered output to the terminal or stream

  // Reads one line into line (room for kLineMax + 1 bytes, NUL-terminated) and
  // returns its length, or one of the negative results above.
  int ReadLine(char* line);
  // The same, starting from text as if it were typed and with the template
  // holding it; Escape ends the read with kAbandoned. Piped input shows the text
  // on a line of its own and reads the line that replaces it.
  int EditLine(char* line, std::string_view text);
  // The same within a time limit; elapsedSeconds gets the whole seconds taken, plus one.
  int ReadLineTimed(char* line, unsigned seconds, unsigned* elapsedSeconds);
  // The lines read so far, which Up and Down bring back.
  LineHistory& History();
  // True when lines are typed key by key (a terminal), not read whole from a pipe.
  bool ReadsKeys() const;

  // Milliseconds of a steady clock, which the timed reader measures with;
  // tests give it a clock of their own.
  using Clock = int64_t (*)();
  static int64_t SteadyMs();
  void SetClock(Clock clock) { clock_ = clock; }

 private:
  enum EscState : uint8_t { kPlain, kAfterEsc, kAfterBracket, kParams, kAddress };
  friend class LineEditor;

  void Draw(char c);
  void NewLine();
  void LineDown();
  void CursorLeftWrap();
  void ClearScreen();
  void Erase(int x, int y, long count);
  void EscAfterEsc(char c);
  void EscAfterBracket(char c);
  void EscParams(char c);
  void EscAddress(char c);
  void ApplyAttributes();
  void CheckResize();
  // deadline < 0: none; text and escapeEnds as EditLine takes them.
  int ReadLineUntil(char* line, int64_t deadlineMs, std::string_view text, bool escapeEnds);

  std::unique_ptr<ConsoleBackend> out_;
  std::unique_ptr<KeySource> in_;
  std::unique_ptr<LineEditor> editor_;
  Clock clock_ = SteadyMs;
  int width_ = 72;
  int64_t column_ = 0;
  int cols_ = 80;
  int rows_ = 25;
  int x_ = 0;
  int y_ = 0;
  uint16_t defAttr_ = 0x07;
  uint16_t attr_ = 0x07;
  bool reverse_ = false;
  bool scroll_ = true;
  EscState esc_ = kPlain;
  uint8_t nDigits_ = 0;
  uint8_t nParams_ = 0;
  uint8_t nAddr_ = 0;
  char digits_[5] = {};
  char addr_[7] = {};
  uint16_t params_[12] = {};
};

// The console every part of the program writes to.
Console& TheConsole();
// Installs a console (main at start-up, tests with memory back ends); returns the old one.
std::unique_ptr<Console> InstallConsole(std::unique_ptr<Console> console);
// Builds the console for this process: terminal or stream output, terminal or piped input.
std::unique_ptr<Console> MakeProcessConsole();
// For tests: stream output appended to *out, input read as piped lines from input.
std::unique_ptr<Console> MakeStringConsole(std::string* out, std::string_view input);
