// Builds small programs from numbered lines for statement tests, and reads
// variables back after a run.
#pragma once
#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>

#include "console/console.h"
#include "shell/program.h"
#include "shell/run.h"

namespace stmt_test {

// Loads "NUMBER text" lines as the loader does; each line's parse error is kept.
inline std::unique_ptr<Program> Build(std::initializer_list<const char*> lines) {
  auto prog = std::make_unique<Program>();
  for (const char* text : lines) {
    SetParseError(0);
    prog->StartLine(text);
    EXPECT_EQ(prog->GetToken(), tok::kInteger) << text;
    auto number =
        static_cast<uint32_t>(std::strtoul(std::string(prog->Text()).c_str(), nullptr, 10));
    auto line = prog->ParseLine();
    line.front()->SetNumber(number);
    prog->Append(std::move(line));
  }
  SetParseError(0);
  return prog;
}

// The parse error of one statement typed alone, or 0.
inline ErrorCode ParseErrorOf(const char* statement) {
  Program prog;
  SetParseError(0);
  prog.StartLine(statement);
  auto line = prog.ParseLine();
  ErrorCode code = line.front()->ParseError();
  SetParseError(0);
  return code;
}

// The listing of one statement typed alone (after a successful parse).
inline std::string Listing(const char* statement) {
  Program prog;
  SetParseError(0);
  prog.StartLine(statement);
  auto line = prog.ParseLine();
  std::string out;
  line.front()->List(out);
  return out;
}

// Links and runs; the run's error (0 after END, STOP or the end mark).
inline ErrorCode LinkAndRun(Program& prog) {
  if (ErrorCode code = Link(prog)) return code;
  return Run(prog, true);
}

inline float Num(Program& prog, const char* name) {
  prog.StartLine(name);
  auto var = ParseNumericVar(prog);
  EXPECT_TRUE(var) << name;
  EXPECT_EQ(var->Link(prog), 0u);
  float value = var->Evaluate();
  ClearError();
  return value;
}

inline std::string Str(Program& prog, const char* name) {
  prog.StartLine(name);
  auto var = ParseStringVar(prog);
  EXPECT_TRUE(var) << name;
  if (auto* ref = dynamic_cast<Reference*>(var.get())) {
    EXPECT_EQ(ref->Link(prog), 0u);
  }
  StringValue work;
  return std::string(var->Evaluate(work));
}

// Runs with the console reading `typed` and captures what it writes.
struct ConsoleCapture {
  explicit ConsoleCapture(std::string_view typed) {
    old = InstallConsole(MakeStringConsole(&out, typed));
  }
  ~ConsoleCapture() { InstallConsole(std::move(old)); }
  const std::string& Text() {
    TheConsole().Flush();
    return out;
  }
  std::string out;
  std::unique_ptr<Console> old;
};

}  // namespace stmt_test
