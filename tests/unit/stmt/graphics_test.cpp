// The graphics statements: their forms, their rounding, and the windows a
// program leaves behind for the next link pass to close.
#include <gtest/gtest.h>

#include "gdi/bitmap.h"
#include "gdi/gdi.h"
#include "program_fixture.h"

namespace {

using stmt_test::Build;
using stmt_test::LinkAndRun;
using stmt_test::Listing;
using stmt_test::ParseErrorOf;

class GraphicsStmt : public ::testing::Test {
 protected:
  void SetUp() override { gdi::SetHeadless(true); }
  void TearDown() override { gdi::SetHeadless(false); }
};

TEST_F(GraphicsStmt, ListInTheirHelpForms) {
  EXPECT_EQ(Listing("window@ 1 ;A+1 , B*2"), "WINDOW @1; A+1,B*2");
  EXPECT_EQ(Listing("CLOSE @N"), "CLOSE @N");
  EXPECT_EQ(Listing("color @(2);255,R,G+1"), "COLOR @(2); 255,R,G+1");
  EXPECT_EQ(Listing("MOVETO @1;-1,-2"), "MOVETO @1; -1,-2");
  EXPECT_EQ(Listing("LINETO @1; X , Y"), "LINETO @1; X,Y");
  EXPECT_EQ(Listing("update @ 7"), "UPDATE @7");
  EXPECT_EQ(Listing("SHOW @1"), "SHOW @1");
  EXPECT_EQ(Listing("HIDE @1"), "HIDE @1");
}

TEST_F(GraphicsStmt, ParseErrorsFollowTheForm) {
  EXPECT_EQ(ParseErrorOf("WINDOW 1;2,3"), 55u);
  EXPECT_EQ(ParseErrorOf("SHOW"), 55u);
  EXPECT_EQ(ParseErrorOf("WINDOW @;1,2"), 56u);
  EXPECT_EQ(ParseErrorOf("HIDE @A$"), 56u);
  EXPECT_EQ(ParseErrorOf("WINDOW @1 2,3"), 41u);
  EXPECT_EQ(ParseErrorOf("MOVETO @1;2 3"), 40u);
  EXPECT_EQ(ParseErrorOf("COLOR @1;1,2"), 40u);
  EXPECT_EQ(ParseErrorOf("LINETO @1;2,"), 35u);
  EXPECT_EQ(ParseErrorOf("LINETO @1;(2,3"), 29u);  // the expression's own error
  EXPECT_EQ(ParseErrorOf("UPDATE @1;2"), 14u);
  // Without "@", CLOSE and UPDATE are the file statements, which are not built.
  EXPECT_EQ(ParseErrorOf("CLOSE 1"), 4u);
  EXPECT_EQ(ParseErrorOf("UPDATE"), 4u);
}

TEST_F(GraphicsStmt, ArgumentsRoundByAddingAHalfAndFlooring) {
  auto prog = Build({"10 WINDOW @0.5; 4.4,2.5", "20 MOVETO @1; -0.5,0.49", "30 LINETO @1; 2.5,-0.5",
                     "40 MOVETO @1; -0.6,1", "50 LINETO @1; 2,1.4"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  const Bitmap* b = gdi::PictureOf(1);
  ASSERT_TRUE(b);
  EXPECT_EQ(b->Width(), 4u);
  EXPECT_EQ(b->Height(), 3u);
  // Row 0 from x 0 to 3 (end left out); row 1 from x -1 to 2, so x 0 and 1.
  const uint32_t G = Bitmap::kGreen, W = Bitmap::kWhite;
  uint32_t want[3][4] = {{G, G, G, W}, {G, G, W, W}, {W, W, W, W}};
  for (uint32_t y = 0; y < 3; ++y)
    for (uint32_t x = 0; x < 4; ++x) EXPECT_EQ(b->Pixel(x, y), want[y][x]) << x << "," << y;
}

TEST_F(GraphicsStmt, WindowsOutliveTheRunUntilTheNextLink) {
  auto prog = Build({"10 WINDOW @3; 10,10", "20 LINETO @3; 5,0"});
  ASSERT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_TRUE(gdi::PictureOf(3));
  auto next = Build({"10 LINETO @3; 1,1"});
  EXPECT_EQ(LinkAndRun(*next), 2503u);
  EXPECT_EQ(g_err.location >> 8, 10u);
}

TEST_F(GraphicsStmt, AFailedArgumentStopsBeforeAnyCheck) {
  auto prog = Build({"10 WINDOW @99; Q,1"});
  EXPECT_EQ(LinkAndRun(*prog), 1001u);  // Q has no value: evaluated before 2501
  prog = Build({"10 WINDOW @2; 1E38*10,1"});
  EXPECT_EQ(LinkAndRun(*prog), 3u);  // far too large a picture
  prog = Build({"10 WINDOW @2; 2,2", "20 COLOR @2; 0/0,0,0"});
  EXPECT_EQ(LinkAndRun(*prog), 1014u);
}

}  // namespace
