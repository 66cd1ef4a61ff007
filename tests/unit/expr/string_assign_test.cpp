// Whole and substring assignment into string variables.
#include <gtest/gtest.h>

#include "../format/print_session.h"

namespace {

using print_test::Build;
using print_test::LinkAndRun;
using print_test::StringOf;

struct Result {
  std::string text;
  ErrorCode error;
};

// Runs the lines and returns A$ (its full length, NULs included) and the run's error.
Result RunA(std::initializer_list<const char*> lines) {
  print_test::Capture capture;
  auto prog = Build(lines);
  ErrorCode error = LinkAndRun(*prog);
  return {std::string(StringOf(*prog, "A$").View()), error};
}

TEST(StringAssign, CapacityFollowsTheLength) {
  StringValue v;
  EXPECT_EQ(v.Length(), 0u);
  EXPECT_EQ(v.Capacity(), 32u);
  v.Assign(std::string(31, 'x'));
  EXPECT_EQ(v.Capacity(), 32u);
  v.Assign(std::string(32, 'x'));
  EXPECT_EQ(v.Capacity(), 64u);
  v.Assign("");
  EXPECT_EQ(v.Capacity(), 32u);
  EXPECT_EQ(v.Data()[0], '\0');
}

TEST(StringAssign, NewVariableIsEmpty) { EXPECT_EQ(RunA({"10 B$=A$"}).text, ""); }

// The first-position form sets the length one past the copied text.
TEST(StringAssign, FromPositionKeepsOneMoreCharacter) {
  EXPECT_EQ(RunA({"10 A$=\"ABCDEFG\"", "20 A$[2]=\"Z\""}).text, "AZC");
  EXPECT_EQ(RunA({"10 A$=\"ABCDE\"", "20 A$[5]=\"X\""}).text, std::string("ABCDX\0", 6));
  EXPECT_EQ(RunA({"10 A$=\"ABC\"", "20 A$[4]=\"DE\""}).text, std::string("ABCDE\0", 6));
  EXPECT_EQ(RunA({"10 A$=\"ABC\"", "20 A$[1.4]=\"\""}).text, "A");
}

TEST(StringAssign, FromPositionErrors) {
  Result r = RunA({"10 A$=\"ABC\"", "20 A$[6]=\"X\""});
  EXPECT_EQ(r.error, 1007u);
  EXPECT_EQ(r.text, "ABC");
  EXPECT_EQ(RunA({"10 A$=\"ABC\"", "20 A$[0]=\"X\""}).error, 1009u);
  EXPECT_EQ(RunA({"10 A$=\"ABC\"", "20 A$[-1]=\"X\""}).error, 1007u);
  EXPECT_EQ(RunA({"10 A$=\"ABC\"", "20 A$[65536]=\"X\""}).error, 1007u);
}

// A successful first-position store clears an error its own value raised.
TEST(StringAssign, FromPositionClearsTheRunError) {
  Result r = RunA({"10 B$=\"XY\"", "20 A$[1]=B$[0]", "30 A$=\"GO\""});
  EXPECT_EQ(r.error, 0u);
  EXPECT_EQ(r.text, "GO");
}

TEST(StringAssign, Range) {
  EXPECT_EQ(RunA({"10 A$=\"ABCDE\"", "20 A$[2,3]=\"X\""}).text, "AX DE");
  EXPECT_EQ(RunA({"10 A$=\"ABCDE\"", "20 A$[2,3]=\"WXYZ\""}).text, "AWXDE");
  EXPECT_EQ(RunA({"10 A$=\"AB\"", "20 A$[2,5]=\"Q\""}).text, "AQ   ");
  EXPECT_EQ(RunA({"10 A$=\"ABCDE\"", "20 A$[2;2]=\"X\""}).text, "AX DE");
  EXPECT_EQ(RunA({"10 A$=\"AB\"", "20 A$[3;0]=\"X\""}).text, "AB");
  EXPECT_EQ(RunA({"10 A$=\"AB\"", "20 A$[4,5]=\"X\""}).error, 1007u);
  EXPECT_EQ(RunA({"10 A$=\"AB\"", "20 A$[0,1]=\"X\""}).error, 1009u);
  EXPECT_EQ(RunA({"10 A$=\"ABC\"", "20 A$[3,1]=\"X\""}).error, 1008u);
  EXPECT_EQ(RunA({"10 A$=\"ABC\"", "20 A$[2;-1]=\"X\""}).error, 1008u);
}

TEST(StringAssign, RangeGrowsTheBuffer) {
  print_test::Capture capture;
  auto prog = Build({"10 A$=\"AB\"", "20 A$[3,40]=\"C\""});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  const StringValue& a = StringOf(*prog, "A$");
  EXPECT_EQ(a.View(), "ABC" + std::string(37, ' '));
  EXPECT_EQ(a.Capacity(), 64u);
}

// The value is taken before the target changes, so a target may be its own source.
TEST(StringAssign, SourceMayBeTheTarget) {
  EXPECT_EQ(RunA({"10 A$=\"ABCDE\"", "20 A$[2,3]=A$"}).text, "AABDE");
  EXPECT_EQ(RunA({"10 A$=\"ABC\"", "20 A$[2]=A$"}).text, std::string("AABC\0", 5));
  EXPECT_EQ(RunA({"10 A$=\"ABCDE\"", "20 A$=A$[2,3]"}).text, "BC");
  EXPECT_EQ(RunA({"10 A$=\"AB\"", "20 A$=A$+A$+A$"}).text, "ABABAB");
}

// Twenty doublings give a string of 1,048,576 characters.
TEST(StringAssign, MegabyteString) {
  print_test::Capture capture;
  auto prog = Build({"10 A$=\"X\"", "20 A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$",
                     "30 A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$",
                     "40 A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$",
                     "50 A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$",
                     "60 A$[1048576,1048577]=\"YZ\"", "70 C$=A$[65535;2]", "80 B$=A$[65536]"});
  // Stores reach any position; reads stop at 65535.
  EXPECT_EQ(LinkAndRun(*prog), 1009u);
  const StringValue& a = StringOf(*prog, "A$");
  EXPECT_EQ(a.Length(), 1048577u);
  EXPECT_EQ(a.Capacity(), StringValue::CapacityFor(1048577));
  EXPECT_EQ(a.View().substr(1048574), "XYZ");
  EXPECT_EQ(StringOf(*prog, "C$").View(), "XX");
}

}  // namespace
