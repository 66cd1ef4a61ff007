// libFuzzer target: the first line of the input after "MAT " as one statement of
// a small program whose arrays are declared and filled, the rest as the lines
// typed at MAT INPUT. The run ends with a code of the error table, and every
// array keeps its bounds within the room it was created with.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "fuzz_support.h"
#include "program/program.h"
#include "program/run.h"

namespace {

// Builds the program the loader would build from numbered lines.
std::unique_ptr<Program> Build(const std::string& statement) {
  const std::string lines[] = {
      "10 DIM A(4,4),B(4,4),C(16),V(4),S$(2,3)",
      "20 MAT A=CON",
      "30 MAT B=IDN",
      "40 MAT C=CON",
      "50 MAT V=ZER",
      "60 MAT " + statement,
      "70 DATA 1,2.5,\"x\",-3,4,5,6,\"y\",7,8,9,10,11,12,13,14,15,16,17",
  };
  auto prog = std::make_unique<Program>();
  uint32_t number = 10;
  for (const std::string& text : lines) {
    SetParseError(0);
    prog->StartLine(text.c_str());
    prog->GetToken();  // the statement number
    auto line = prog->ParseLine();
    line.front()->SetNumber(number);
    number += 10;
    prog->Append(std::move(line));
  }
  SetParseError(0);
  return prog;
}

bool Sound(const ArrayShape& shape) {
  double total = 1;
  for (uint32_t bound : shape.dims.Bounds()) total *= bound;
  return shape.dims.Count() >= 1 && shape.count <= shape.capacity && total == shape.count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string input(reinterpret_cast<const char*>(data), size);
  input = input.substr(0, input.find('\0'));
  size_t end = input.find('\n');
  std::string statement = input.substr(0, end);
  std::string typed = end == std::string::npos ? "" : input.substr(end + 1);
  if (statement.size() > 200) return 0;

  fuzz::UseConsole(typed);
  {
    std::unique_ptr<Program> prog = Build(statement);
    ErrorCode code = Link(*prog);
    if (!code) code = Run(*prog, true);
    if (std::string(MessageOf(code)) == "OK!" && code != 0) std::abort();
    for (const char* name : {"A", "B", "C", "V"})
      if (const VarToken* symbol = prog->Table(tok::kNumArray).Find(name))
        if (const auto& array = prog->variables.NumericArray(symbol); array && !Sound(*array))
          std::abort();
    if (const VarToken* symbol = prog->Table(tok::kStrArray).Find("S$"))
      if (const auto& array = prog->variables.StringArray(symbol); array && !Sound(*array))
        std::abort();
  }
  fuzz::ResetState();
  return 0;
}
