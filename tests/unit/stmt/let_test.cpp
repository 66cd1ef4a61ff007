// LET with and without its keyword.
#include <gtest/gtest.h>

#include "../format/print_session.h"

namespace {

using print_test::ListingOf;
using print_test::Output;
using print_test::ParseErrorOf;

TEST(Let, TargetLists) {
  EXPECT_EQ(Output({"10 A,B=5", "20 PRINT A;B"}), " 5     5    \n");
  EXPECT_EQ(Output({"10 LET A=B=5", "20 PRINT A;B"}), " 5     5    \n");
  EXPECT_EQ(Output({"10 B=2", "20 A=B=C=B+1", "30 PRINT A;B;C"}), " 3     3     3    \n");
  // A single "=" between two names is an assignment of the second to the first.
  EXPECT_EQ(Output({"10 B=7", "20 A=B", "30 PRINT A"}), " 7    \n");
  EXPECT_EQ(Output({"10 A$,B$=\"X\"", "20 C$=D$=A$+B$", "30 PRINT A$;B$;C$;D$"}), "XXXXXX\n");
  // A string comparison on the right is a numeric value.
  EXPECT_EQ(Output({"10 A=\"B\">\"A\"", "20 PRINT A"}), " 1    \n");
}

TEST(Let, GroupsRunLeftToRight) {
  EXPECT_EQ(Output({"10 X=1; Y=X+1", "20 PRINT X;Y"}), " 1     2    \n");
  EXPECT_EQ(Output({"10 LET A$=\"AB\"; A$[3]=A$;", "20 PRINT A$[1,4]"}), "ABAB\n");
}

TEST(Let, ElementTargets) {
  ErrorCode error = 0;
  EXPECT_EQ(Output({"10 A(3),B=4", "20 PRINT A(3);B"}), " 4     4    \n");
  Output({"10 A(11)=1"}, 72, &error);
  EXPECT_EQ(error, 1002u);
}

// "V = V op E" runs as one update; it must read, check and list as the
// general form does.
TEST(Let, UpdatesOfTheTarget) {
  EXPECT_EQ(
      Output({"10 S=10", "20 S=S+2; S=S-3; S=S*4; S=S/6; S=(S)-1", "30 S=S-S*2", "40 PRINT S"}),
      "-5    \n");
  EXPECT_EQ(Output({"10 S=5", "20 T=2", "30 S=S-T; S=S/(T+2)", "40 PRINT S"}), " 0.75      \n");
  EXPECT_EQ(ListingOf("LET S = S + 1"), "LET S=S+1");
  EXPECT_EQ(ListingOf("S=(S)/2"), "S=(S)/2");
  ErrorCode error = 0;
  Output({"10 S=S+1"}, 72, &error);  // the target itself undefined
  EXPECT_EQ(error, 1001u);
  Output({"10 S=1", "20 S=S*Q"}, 72, &error);
  EXPECT_EQ(error, 1001u);
}

// A product of two variables is read in place inside sums and assignments;
// it must compute, check and list as its node does.
TEST(Let, ProductsOfVariables) {
  EXPECT_EQ(Output({"10 A=3", "20 B=4", "30 C=A*B+B*A; D=A*A-(B*B); S=1; S=S+A*B; E=A*B",
                    "40 F=A*A*0.5-A*B+1", "50 PRINT C;D;S;E;F"}),
            " 24   -7     13    12   -6.5       \n");
  EXPECT_EQ(ListingOf("C=(A*B)+B*A"), "C=(A*B)+B*A");
  ErrorCode error = 0;
  Output({"10 A=1", "20 C=A*Q+1"}, 72, &error);
  EXPECT_EQ(error, 1001u);
  Output({"10 A=1", "20 S=1", "30 S=S-Q*A"}, 72, &error);
  EXPECT_EQ(error, 1001u);
}

TEST(Let, ParseErrors) {
  EXPECT_EQ(ParseErrorOf("LET"), 24u);
  EXPECT_EQ(ParseErrorOf("LET 5"), 24u);
  EXPECT_EQ(ParseErrorOf("A=\"X\""), 35u);
  EXPECT_EQ(ParseErrorOf("A,B="), 35u);
  EXPECT_EQ(ParseErrorOf("A$=B"), 36u);
  EXPECT_EQ(ParseErrorOf("LET A$,B$"), 36u);
  EXPECT_EQ(ParseErrorOf("X=1;"), 0u);
  EXPECT_EQ(ParseErrorOf("X=1;Y="), 35u);
}

// Each target keeps the separator it was written with.
TEST(Let, Listing) {
  EXPECT_EQ(ListingOf("LET A,B=5"), "LET A,B=5");
  EXPECT_EQ(ListingOf("A = B = 5"), "A=B=5");
  EXPECT_EQ(ListingOf("A,B=C=1;D$[2,3]=E$+\"X\""), "A,B=C=1; D$[2,3]=E$+\"X\"");
}

}  // namespace
