// String relations and substring reads, seen through PRINT.
#include <gtest/gtest.h>

#include "../format/print_session.h"

namespace {

using print_test::Output;

std::string Printed(const char* item, ErrorCode* error = nullptr) {
  std::string line = std::string("20 PRINT ") + item;
  return Output({"10 A$=\"ABCDEF\"", line.c_str()}, 72, error);
}

TEST(StringCompare, BytesThenLength) {
  EXPECT_EQ(Printed("\"ABC\"<\"ABCD\";\"ABCD\"<\"ABC\";\"ABC\"=\"ABC\""), " 1     0     1    \n");
  EXPECT_EQ(Printed("\"B\">\"A\";\"B\">=\"B\";\"A\"<=\"B\";\"A\"<>\"B\";\"A\"#\"A\""),
            " 1     1     1     1     0    \n");
  // Equal strings are neither less nor greater; the other way round is false too.
  EXPECT_EQ(Printed("\"A\"<\"A\";\"A\">\"A\";\"B\"<=\"A\";\"A\">=\"B\";\"A\"=\"B\""),
            " 0     0     0     0     0    \n");
  // Bytes compare as signed values: 200 sorts before every ASCII character.
  EXPECT_EQ(Printed("'200<\"A\";\"\"<'200"), " 1     1    \n");
  EXPECT_EQ(Printed("A$[1,3]=\"ABC\";A$+\"G\">A$"), " 1     1    \n");
}

// The left value is kept aside while the right side runs: here the right side
// calls the same function, whose work area holds the left value.
TEST(StringCompare, RightSideCallsTheLeftSidesFunction) {
  EXPECT_EQ(Output({"10 DEF FNJ$(A$)=A$+\"X\"",
                    "20 PRINT FNJ$(\"A\")<FNJ$(\"B\");FNJ$(\"B\")<FNJ$(\"A\");A$<FNJ$(A$)"},
                   72, nullptr),
            " 1     0     1    \n");
}

TEST(StringCompare, SubstringReads) {
  EXPECT_EQ(Printed("A$[2,4];\"|\";A$[7];\"|\";A$[3,2];\"|\";A$[3;0];\"|\""), "BCD||||\n");
  EXPECT_EQ(Printed("A$[5;4];\"|\";A$[5,8];\"|\";A$[65535;2];\"|\""), "EF  |EF  |  |\n");
  EXPECT_EQ(Printed("A$[2.5];\"|\";A$[2.4;1.5]"), "CDEF|BC\n");
  ErrorCode error = 0;
  Printed("A$[0]", &error);
  EXPECT_EQ(error, 1009u);
  Printed("A$[65536]", &error);
  EXPECT_EQ(error, 1009u);
  Printed("A$[4,2]", &error);
  EXPECT_EQ(error, 1008u);
}

}  // namespace
