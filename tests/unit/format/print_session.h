// Runs small numbered programs with the console captured, for the PRINT,
// LET and string tests.
#pragma once
#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>

#include "console/console.h"
#include "shell/program.h"
#include "shell/run.h"

namespace print_test {

// Installs a console that writes into out for the test's lifetime.
class Capture final {
 public:
  explicit Capture(int width = 72) : old_(InstallConsole(MakeStringConsole(&out_, ""))) {
    TheConsole().SetWidth(width);
  }
  ~Capture() { InstallConsole(std::move(old_)); }
  const std::string& Text() {
    TheConsole().Flush();
    return out_;
  }

 private:
  std::string out_;
  std::unique_ptr<Console> old_;
};

inline std::unique_ptr<Program> Build(std::initializer_list<const char*> lines) {
  auto prog = std::make_unique<Program>();
  for (const char* text : lines) {
    SetParseError(0);
    prog->StartLine(text);
    EXPECT_EQ(prog->GetToken(), tok::kInteger) << text;
    auto number =
        static_cast<uint32_t>(std::strtoul(std::string(prog->Text()).c_str(), nullptr, 10));
    auto line = prog->ParseLine();
    EXPECT_EQ(line.front()->ParseError(), 0u) << text;
    line.front()->SetNumber(number);
    prog->Append(std::move(line));
  }
  SetParseError(0);
  return prog;
}

// Links and runs; the error that ended the run, with the error state cleared.
inline ErrorCode LinkAndRun(Program& prog) {
  ErrorCode code = Link(prog);
  if (!code) code = Run(prog, true);
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

// The parse error of one unnumbered statement, or 0.
inline ErrorCode ParseErrorOf(const char* statement) {
  Program prog;
  SetParseError(0);
  prog.StartLine(statement);
  auto line = prog.ParseLine();
  SetParseError(0);
  return line.empty() ? 0 : line.front()->ParseError();
}

inline std::string ListingOf(const char* statement) {
  Program prog;
  SetParseError(0);
  prog.StartLine(statement);
  auto line = prog.ParseLine();
  SetParseError(0);
  std::string out;
  if (!line.empty()) line.front()->List(out);
  return out;
}

}  // namespace print_test
