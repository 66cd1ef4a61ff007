// The ECMA-48 text that the terminal and the web page's back ends send: positions,
// colours, erases, wrapping and scrolling, written into a string.
#include <gtest/gtest.h>

#include <string>

#include "console/console.h"
#include "console/ecma48_screen.h"
#include "console/key_source.h"

namespace {

class StringScreen final : public Ecma48Screen<StringScreen> {
 public:
  StringScreen(int cols, int rows, std::string* out, bool* changed) : out_(out), changed_(changed) {
    cols_ = cols;
    rows_ = rows;
  }

 private:
  friend class Ecma48Screen<StringScreen>;
  void Sync() {}
  void Pending() {}
  void Changed(bool changed) { *changed_ = changed; }
  void Drain() {
    out_->append(buf_, n_);
    n_ = 0;
  }

  std::string* out_;
  bool* changed_;
};

class Ecma48Test : public ::testing::Test {
 protected:
  void Open(int cols, int rows) {
    con = std::make_unique<Console>(std::make_unique<StringScreen>(cols, rows, &out, &changed),
                                    MakeStringInput(""));
  }
  // What the screen was sent for text, flushed.
  std::string Sent(std::string_view text) {
    out.clear();
    con->WriteEsc(text);
    con->Flush();
    return out;
  }

  std::string out;
  bool changed = false;
  std::unique_ptr<Console> con;
};

TEST_F(Ecma48Test, PlacesTheFirstCellThenFollowsOnAndEndsLinesWithCrLf) {
  Open(10, 5);
  EXPECT_EQ(Sent("AB\r\nC"), "\x1b[1;1HAB\r\nC");
  EXPECT_EQ(Sent("\nD"), "\x1b[3;2HD");        // a line feed alone keeps the column
  EXPECT_EQ(Sent("\x1b[3;H*"), "\x1b[4;4H*");  // rows and columns from 0 in the escape
}

TEST_F(Ecma48Test, ColoursBecomeSgrAndTheStartColoursTheTerminalsOwn) {
  Open(20, 5);
  EXPECT_EQ(Sent("\x1b[31;1mR"), "\x1b[0;91;40m\x1b[1;1HR");
  EXPECT_TRUE(changed);
  EXPECT_EQ(Sent("\x1b[44;33;22mY"), "\x1b[0;33;44mY");
  EXPECT_EQ(Sent("\x1b[37;40mW"), "\x1b[0mW");
  EXPECT_FALSE(changed);
  EXPECT_EQ(Sent("\x1b[80m\x1b[81m"), "\x1b[?25l\x1b[?25h");
}

TEST_F(Ecma48Test, ErasesToTheEndOfScreenOrLineOrSomeCells) {
  Open(10, 4);
  Sent("ABCDEFGH\x1b[H");
  EXPECT_EQ(Sent("\x1b[J"), "\r\x1b[J");
  EXPECT_EQ(Sent("\x1b[K"), "\r\x1b[K");
  EXPECT_EQ(Sent("\x1b[1K"), "");  // nothing before the cursor at the start of a line
  EXPECT_EQ(Sent("\x1b"
                 "F003000\x1b[1K"),
            "\r\x1b[3X\x1b[1;4H");
}

TEST_F(Ecma48Test, TheLastColumnWrapsByPositionAndTheBottomScrolls) {
  Open(4, 2);
  EXPECT_EQ(Sent("ABCDE"), "\x1b[1;1HABCD\r\nE");
  EXPECT_EQ(Sent("\nF"), "\r\n\x1b[2;2HF");  // on the bottom row: scrolled, then placed
}

// The model counts bytes: the next character goes where the model says, past the cell
// the terminal gave the whole character.
TEST_F(Ecma48Test, AUtf8CharacterStaysTogetherAndControlsShowAsBlanks) {
  Open(10, 2);
  EXPECT_EQ(Sent("\xc3\xa9x"), "\x1b[1;1H\xc3\xa9\x1b[1;3Hx");
  out.clear();
  con->PutPlain('\x01');
  con->Flush();
  EXPECT_EQ(out, " ");
}

TEST_F(Ecma48Test, OutputLongerThanTheBufferArrivesWhole) {
  Open(80, 25);
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "0123456789012345678901234567890123456789\n";
  std::string sent = Sent(text);
  size_t lines = 0;
  for (size_t at = 0;
       (at = sent.find("0123456789012345678901234567890123456789", at)) != std::string::npos; ++at)
    ++lines;
  EXPECT_EQ(lines, 1000u);
  EXPECT_GT(sent.size(), size_t{16 * 1024});
}

}  // namespace
