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
#include "test_program.h"

namespace stmt_test {

using test_program::Build;
using test_program::ConsoleCapture;
using test_program::LinkAndRun;
using test_program::ParseErrorOf;

// The listing of one statement typed alone (after a successful parse).
inline std::string Listing(const char* statement) { return test_program::ListingOf(statement); }

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

}  // namespace stmt_test
