// Small numbered programs built as the loader builds them, linked and run with
// the console captured; shared by the statement, PRINT and storage tests.
#pragma once
#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "console/console.h"
#include "program/program.h"
#include "program/run.h"

namespace test_program {

// Loads "NUMBER text" lines; each line's parse error stays with its statement.
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

// One unnumbered statement parsed alone, as a line.
inline std::vector<StatementPtr> ParseAlone(Program& prog, const char* statement) {
  SetParseError(0);
  prog.StartLine(statement);
  auto line = prog.ParseLine();
  SetParseError(0);
  return line;
}

// The parse error of one statement typed alone, or 0.
inline ErrorCode ParseErrorOf(const char* statement) {
  Program prog;
  auto line = ParseAlone(prog, statement);
  return line.empty() ? 0 : line.front()->ParseError();
}

// The listing of one statement typed alone.
inline std::string ListingOf(const char* statement) {
  Program prog;
  auto line = ParseAlone(prog, statement);
  std::string out;
  if (!line.empty()) line.front()->List(out);
  return out;
}

// Binds every variable reference parsed so far, as a link does; the first error.
inline ErrorCode LinkReferences(Program& prog) {
  ErrorCode first = 0;
  for (Reference* r = prog.References().First(); r; r = r->Next())
    if (ErrorCode code = r->Link(prog); code && !first) first = code;
  return first;
}

// Links and runs; the run's error (0 after END, STOP or the end mark).
inline ErrorCode LinkAndRun(Program& prog) {
  if (ErrorCode code = Link(prog)) return code;
  return Run(prog, true);
}

// The console reads `typed` and writes into a string while this lives.
class ConsoleCapture final {
 public:
  explicit ConsoleCapture(std::string_view typed = "", int width = 72)
      : old_(InstallConsole(MakeStringConsole(&out_, typed))) {
    TheConsole().SetWidth(width);
  }
  ~ConsoleCapture() { InstallConsole(std::move(old_)); }
  const std::string& Text() {
    TheConsole().Flush();
    return out_;
  }

 private:
  std::string out_;
  std::unique_ptr<Console> old_;
};

}  // namespace test_program
