// The escape interpreter, checked cell by cell on an in-memory screen.
#include <gtest/gtest.h>

#include <climits>

#include "console/console.h"
#include "console/console_backend.h"
#include "console/key_source.h"

namespace {

class EscapeTest : public ::testing::Test {
 protected:
  EscapeTest() {
    auto mem = std::make_unique<MemoryBackend>(20, 5);
    screen = mem.get();
    con = std::make_unique<Console>(std::move(mem), MakeStringInput(""));
  }
  void Esc(std::string_view s) { con->WriteEsc(s); }

  MemoryBackend* screen;
  std::unique_ptr<Console> con;
};

TEST_F(EscapeTest, CursorAddressTakesOneRepeatedNumberOnly) {
  Esc("\x1b[10;5H");
  EXPECT_EQ(screen->Row(0), "H");  // three parameters: rejected, letter drawn
  EXPECT_EQ(con->CursorX(), 1);
  Esc("\x1b[3;Hx");
  EXPECT_EQ(screen->At(3, 3).ch, 'x');
  EXPECT_EQ(con->CursorY(), 3);
}

TEST_F(EscapeTest, DirectAddressingMovesAndEndsOnOtherCharacter) {
  Esc("\x1b"
      "F005003*");
  EXPECT_EQ(screen->At(5, 3).ch, '*');
  Esc("\x1b"
      "F01x");  // cut short: the x is drawn where the cursor was
  EXPECT_EQ(screen->At(6, 3).ch, 'x');
  Esc("\x1b"
      "F  1  2");
  EXPECT_EQ(con->CursorX(), 1);
  EXPECT_EQ(con->CursorY(), 2);
}

TEST_F(EscapeTest, AttributesIntensityReverseAndReset) {
  Esc("\x1b[31;1mA");
  EXPECT_EQ(screen->At(0, 0).attr, 0x0C);  // bright red on black
  Esc("\x1b[0m\x1b[32;44mB");
  EXPECT_EQ(screen->At(1, 0).attr, 0x12);
  Esc("\x1b[7mC\x1b[7mD");
  EXPECT_EQ(screen->At(2, 0).attr, 0x21);
  EXPECT_EQ(screen->At(3, 0).attr, 0x21);  // a second 7 changes nothing
  Esc("\x1b[31mE");  // foreground colour goes to the background bits while reversed
  EXPECT_EQ(screen->At(4, 0).attr, 0x41);
  Esc("\x1b[1m\x1b[0mF");
  EXPECT_EQ(screen->At(5, 0).attr, 0x14);  // swapped back, intensity cleared, colours kept
}

TEST_F(EscapeTest, UnknownAttributeDrawsMAndKeepsColours) {
  Esc("\x1b[32m\x1b[1;99mX");
  EXPECT_EQ(screen->Row(0), "mX");
  EXPECT_EQ(screen->At(1, 0).attr, 0x02);
  Esc("\x1b[80m");
  EXPECT_FALSE(screen->CursorVisible());
  Esc("\x1b[81m");
  EXPECT_TRUE(screen->CursorVisible());
}

TEST_F(EscapeTest, FifthDigitEndsSequenceAndIsDrawn) {
  Esc("\x1b[2;H\x1b[12345A");
  EXPECT_EQ(screen->Row(2), "  5A");
  Esc("\x1b[2A");
  EXPECT_EQ(con->CursorY(), 0);
  Esc("\x1b[9C\x1b[99D");
  EXPECT_EQ(con->CursorX(), 0);  // moves stop at the edges
  Esc("\x1b[1;2A");              // not exactly one parameter: dropped silently
  EXPECT_EQ(screen->Row(0), "");
}

TEST_F(EscapeTest, ErasesKeepAttributesAndOneJIsText) {
  Esc("\x1b[44mabcdef\r\x1b[2C\x1b[K");
  EXPECT_EQ(screen->Row(0), "ab");
  EXPECT_EQ(screen->At(4, 0).attr, 0x17);
  EXPECT_EQ(screen->At(10, 0).attr, 0x07);
  Esc("\r\nxyz\x1b[D\x1b[1K");  // up to the cursor, not under it
  EXPECT_EQ(screen->Row(1), "  z");
  Esc("\x1b[1J");
  EXPECT_EQ(screen->Row(1), "  J");
  Esc("\x1b[2J");
  for (int y = 0; y < 5; ++y) EXPECT_EQ(screen->Row(y), "");
  EXPECT_EQ(con->CursorX(), 0);
  EXPECT_EQ(con->CursorY(), 0);
}

TEST_F(EscapeTest, ColumnCountsEscapeCharacters) {
  con->WriteEsc("ab");
  int before = con->Column();
  con->WriteEsc("\x1b[2J");
  EXPECT_EQ(con->Column(), before + 4);
  con->WriteEsc("\r");
  EXPECT_EQ(con->Column(), 0);
}

TEST_F(EscapeTest, SequenceMaySpanCalls) {
  Esc("\x1b");
  Esc("[");
  Esc("2;");
  Esc("Hq");
  EXPECT_EQ(screen->At(2, 2).ch, 'q');
}

TEST_F(EscapeTest, WrapsAtLastColumnAndScrollsAtBottom) {
  Esc("\x1b"
      "F018000abc");
  EXPECT_EQ(screen->Row(0).substr(18), "ab");
  EXPECT_EQ(screen->Row(1), "c");
  Esc("\x1b[4;Htop\r\nnext");
  EXPECT_EQ(screen->Row(4), "next");
  EXPECT_EQ(screen->Row(0), "c");  // the first row scrolled away
  EXPECT_EQ(screen->Row(3).substr(0, 7), "    top");
  EXPECT_EQ(con->CursorY(), 4);
}

TEST_F(EscapeTest, PlainPutHasNoEscapesAndBackspaceWraps) {
  con->Write("a\x1b[2J");
  EXPECT_EQ(screen->Row(0), "a\x1b[2J");
  con->Write("\n\bZ");
  EXPECT_EQ(screen->At(19, 0).ch, 'Z');
  con->Printf("%d-%s", 42, "x");
  EXPECT_EQ(screen->Row(1), "42-x");
  EXPECT_EQ(con->Column(), 6);  // the backspace counted too
}

TEST_F(EscapeTest, ClsPaintsCurrentAttributeAndShowsCursor) {
  Esc("\x1b[80m\x1b[41mhello");
  con->Cls();
  EXPECT_EQ(screen->Row(0), "");
  EXPECT_EQ(screen->At(7, 3).attr, 0x47);
  EXPECT_TRUE(screen->CursorVisible());
  EXPECT_EQ(con->Column(), 0);
  con->RestoreDefaults();
  EXPECT_EQ(con->Attribute(), 0x07);
}

// A screen as wide as an int can count, with the cursor near its end.
class FarScreen final : public ConsoleBackend {
 public:
  void Size(int* cols, int* rows) override {
    *cols = INT_MAX;
    *rows = 1;
  }
  void InitialCursor(int* x, int* y) override {
    *x = INT_MAX - 5;
    *y = 0;
  }
  void Draw(int, int, char, uint16_t) override {}
  void Fill(int, int, long, uint16_t, bool) override {}
  void ScrollUp(uint16_t) override {}
  void SetAttr(uint16_t) override {}
  void ShowCursor(bool) override {}
  void SetTitle(const char*) override {}
  void Flush(int, int) override {}
};

// The output column counts on past 2^31 characters without a carriage return
// (WIDTH 0 allows it); it never wraps to a negative column.
TEST(ConsoleColumn, CountsPastTheIntRange) {
  Console con(std::make_unique<FarScreen>(), MakeStringInput(""));
  con.WriteEsc("0123456789");
  EXPECT_EQ(con.Column(), int64_t{INT_MAX} + 5);
  con.Write("\r");
  EXPECT_EQ(con.Column(), 0);
}

}  // namespace
