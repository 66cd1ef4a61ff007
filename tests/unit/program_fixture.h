// Builds small programs from numbered lines for statement tests, and reads
// variables back after a run.
#pragma once
#include <dirent.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>

#include "console/console.h"
#include "program/program.h"
#include "program/run.h"
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

// Runs each test in a scratch folder, so that relative file names land there.
class ScratchFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/basic_test_XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
    ASSERT_NE(getcwd(old_, sizeof old_), nullptr);
    ASSERT_EQ(chdir(dir_.c_str()), 0);
  }
  void TearDown() override {
    EXPECT_EQ(chdir(old_), 0);
    std::system(("rm -rf " + dir_).c_str());
    ClearError();
  }
  // Open descriptors of this process: a leak shows as a rising count.
  static int OpenDescriptors() {
    int count = 0;
    if (DIR* d = opendir("/proc/self/fd")) {
      while (readdir(d)) ++count;
      closedir(d);
    }
    return count;
  }

  std::string dir_;
  char old_[4096];
};

}  // namespace stmt_test
