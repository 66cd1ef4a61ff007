// Where PRINT output goes. The console is one sink; a file or a window can be
// another, and the print items, number formats and layout rules stay the same.
#pragma once
#include <cstdint>
#include <string_view>

class PrintSink {
 public:
  // Printed characters; a console interprets its escape sequences.
  virtual void Print(char c) = 0;
  virtual void Print(std::string_view text) = 0;
  // Characters written since the last carriage return: the fold and TAB column.
  // 64 bits: WIDTH 0 lets a line grow past 2^31 characters.
  virtual int64_t Column() const = 0;
  // The fold width; 0 is unlimited.
  virtual int Width() const = 0;
  // The true cursor column, which decides when a comma starts a new line.
  virtual int CursorX() const = 0;

 protected:
  ~PrintSink() = default;
};
