// Runs small numbered programs with the console captured, for the PRINT,
// LET and string tests.
#pragma once
#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>

#include "console/console.h"
#include "program/program.h"
#include "program/run.h"
#include "test_program.h"

namespace print_test {

using test_program::ListingOf;
using test_program::ParseErrorOf;

// Captures output at the given width.
class Capture final {
 public:
  explicit Capture(int width = 72) : console_("", width) {}
  const std::string& Text() { return console_.Text(); }

 private:
  test_program::ConsoleCapture console_;
};

// Builds a program whose lines must all parse.
inline std::unique_ptr<Program> Build(std::initializer_list<const char*> lines) {
  auto prog = test_program::Build(lines);
  for (const Statement* s = prog->First(); s; s = s->Next())
    EXPECT_EQ(s->ParseError(), 0u) << s->Number();
  return prog;
}

// Links and runs; the error that ended the run, with the error state cleared.
inline ErrorCode LinkAndRun(Program& prog) {
  ErrorCode code = test_program::LinkAndRun(prog);
  ClearError();
  return code;
}

// The stored value of a string variable or element after a run.
inline const StringValue& StringOf(Program& prog, const char* name) {
  prog.StartLine(name);
  std::unique_ptr<StringVar> var = ParseStringVar(prog);
  auto* whole = dynamic_cast<StringWholeVar*>(var.get());
  EXPECT_TRUE(whole) << name;
  EXPECT_EQ(whole->Link(prog), 0u);
  return *whole->Locate();
}

// What the program prints; *error gets the error that ended the run.
inline std::string Output(std::initializer_list<const char*> lines, int width = 72,
                          ErrorCode* error = nullptr) {
  Capture capture(width);
  auto prog = Build(lines);
  ErrorCode code = LinkAndRun(*prog);
  if (error) *error = code;
  return capture.Text();
}

}  // namespace print_test
