#include "format/print_list.h"

#include <gtest/gtest.h>

#include "base/print_sink.h"
#include "print_session.h"

namespace {

using print_test::ListingOf;
using print_test::Output;
using print_test::ParseErrorOf;

TEST(PrintList, ItemsAndSeparators) {
  EXPECT_EQ(Output({"10 PRINT 5"}), " 5    \n");
  EXPECT_EQ(Output({"10 PRINT -5;1000;\"X\""}), "-5     1000    X\n");
  EXPECT_EQ(Output({"10 PRINT \"A\";", "20 PRINT \"B\""}), "AB\n");
  EXPECT_EQ(Output({"10 PRINT", "20 PRINT"}), "\n\n");
  // Items side by side without a separator.
  EXPECT_EQ(Output({"10 A=1", "20 PRINT \"A=\"A\"!\""}), "A= 1    !\n");
  // A string comparison is a numeric item.
  EXPECT_EQ(Output({"10 PRINT \"ABC\"<\"ABCD\";\"B\"<\"A\""}), " 1     0    \n");
}

TEST(PrintList, CommaZones) {
  EXPECT_EQ(Output({"10 PRINT 1,2"}), " 1" + std::string(14, ' ') + "2    \n");
  // An item that ends on a zone boundary is followed directly by the next one.
  EXPECT_EQ(Output({"10 PRINT \"ABCDEFGHIJKLMNO\",\"X\""}), "ABCDEFGHIJKLMNOX\n");
  EXPECT_EQ(Output({"10 PRINT \"AB\",", "20 PRINT \"C\""}), "AB" + std::string(13, ' ') + "C\n");
  // Up to cursor column 60 a comma pads; past it, it starts a new line.
  EXPECT_EQ(Output({"10 PRINT TAB(58);\"X\",\"Y\""}), std::string(58, ' ') + "X Y\n");
  EXPECT_EQ(Output({"10 PRINT TAB(59);\"X\",\"Y\""}), std::string(59, ' ') + "XY\n");
  EXPECT_EQ(Output({"10 PRINT TAB(60);\"X\",\"Y\""}), std::string(60, ' ') + "X\nY\n");
}

TEST(PrintList, FoldsAtTheWidth) {
  EXPECT_EQ(Output({"10 PRINT \"0123456789\";\"0123456789\";\"X\""}, 20),
            "01234567890123456789\nX\n");
  // A longer item is written whole on a line of its own.
  EXPECT_EQ(Output({"10 PRINT \"AB\";\"0123456789012345678901\""}, 20),
            "AB\n0123456789012345678901\n");
  // TAB to the width itself pads; only past the width does it start a new line.
  EXPECT_EQ(Output({"10 PRINT \"AB\";TAB(20);\"X\""}, 20), "AB" + std::string(18, ' ') + "\nX\n");
  EXPECT_EQ(Output({"10 PRINT \"AB\";TAB(21);\"X\""}, 20), "AB\nX\n");
  // Numbers fold on their reserve, not on their printed length.
  EXPECT_EQ(Output({"10 PRINT \"0123456789ABCDEF\";5"}, 20), "0123456789ABCDEF 5    \n");
  EXPECT_EQ(Output({"10 PRINT \"0123456789ABCDEFG\";5"}, 20), "0123456789ABCDEFG\n 5    \n");
  EXPECT_EQ(Output({"10 PRINT \"0123456789ABCDEFG\";\"\";\"\""}, 20), "0123456789ABCDEFG\n");
  // Width 0 never folds.
  EXPECT_EQ(Output({"10 PRINT \"0123456789\";\"0123456789\";\"X\""}, 0), "01234567890123456789X\n");
}

TEST(PrintList, Tab) {
  EXPECT_EQ(Output({"10 PRINT TAB(3);\"X\""}), "   X\n");
  EXPECT_EQ(Output({"10 PRINT \"ABCDE\";TAB(3);\"X\""}), "ABCDEX\n");
  EXPECT_EQ(Output({"10 PRINT TAB(-7);\"X\""}), "       X\n");
  EXPECT_EQ(Output({"10 PRINT TAB(2.5);\"X\";TAB(0.4);\"Y\""}), "   XY\n");
  EXPECT_EQ(Output({"10 PRINT TAB(1E20);\"X\""}), "X\n");
  // Past the width from a non-empty line: only a new line.
  EXPECT_EQ(Output({"10 PRINT \"A\";TAB(25);\"X\""}, 20), "A\nX\n");
}

TEST(PrintList, SpaAndLin) {
  EXPECT_EQ(Output({"10 PRINT \"A\";SPA(3);\"B\";SPA(0);\"C\";SPA(-2);\"D\""}), "A   BC  D\n");
  EXPECT_EQ(Output({"10 PRINT \"0123456789012345678\";SPA(2);\"X\""}, 20),
            "0123456789012345678\nX\n");
  EXPECT_EQ(Output({"10 PRINT \"A\";LIN(2);\"B\""}), "A\n\nB\n");
  EXPECT_EQ(Output({"10 PRINT \"A\";LIN(0.4);\"B\""}), "AB\n");
  // Bare line feeds keep the column, so the comma still sees "AB".
  EXPECT_EQ(Output({"10 PRINT \"AB\";LIN(-2);\"C\",\"D\""}),
            "AB\n\nC" + std::string(12, ' ') + "D\n");
}

TEST(PrintList, UndefinedValuePrintsZeroAndStops) {
  ErrorCode error = 0;
  EXPECT_EQ(Output({"10 PRINT 1;Q;2", "20 PRINT 3"}, 72, &error), " 1     0     2    \n");
  EXPECT_EQ(error, 1001u);
}

TEST(PrintList, Listing) {
  EXPECT_EQ(ListingOf("PRINT"), "PRINT");
  EXPECT_EQ(ListingOf("print A;B$,\"x\";"), "PRINT A;B$,\"x\";");
  EXPECT_EQ(ListingOf("PRINT A B,"), "PRINT A B,");
  // A literal ending in a code stands apart from the next one; listed with a
  // blank, the two would read back joined.
  EXPECT_EQ(ListingOf("PRINT X '91 \"AB\""), "PRINT X \"[\";\"AB\"");
  EXPECT_EQ(ListingOf("PRINT '91 '7"), "PRINT \"[\";'7");
  EXPECT_EQ(ListingOf("PRINT TAB(5);SPA(A+1);LIN(-1)"), "PRINT TAB(5);SPA(A+1);LIN(-1)");
}

TEST(PrintList, ParseErrors) {
  EXPECT_EQ(ParseErrorOf("PRINT ,"), 37u);
  EXPECT_EQ(ParseErrorOf("PRINT A,,B"), 37u);
  EXPECT_EQ(ParseErrorOf("PRINT TAB 5"), 28u);
  EXPECT_EQ(ParseErrorOf("PRINT TAB(5"), 29u);
  EXPECT_EQ(ParseErrorOf("PRINT TAB()"), 35u);
  EXPECT_EQ(ParseErrorOf("PRINT A ! note"), 0u);
}

}  // namespace

namespace {

// A sink with no console behind it: the column is all it knows of the line.
class StringSink final : public PrintSink {
 public:
  explicit StringSink(int width, int64_t column = 0) : width_(width), column_(column) {}
  void Print(char c) override {
    text += c;
    column_ = c == '\r' || c == '\n' ? 0 : column_ + 1;
  }
  void Print(std::string_view s) override {
    for (char c : s) Print(c);
  }
  int64_t Column() const override { return column_; }
  int Width() const override { return width_; }
  int CursorX() const override { return static_cast<int>(column_ % 80); }

  std::string text;

 private:
  int width_;
  int64_t column_;
};

// The items print on the sink they are given, with the console's layout rules.
TEST(PrintList, ItemsPrintOnTheSinkTheyAreGiven) {
  test_program::ConsoleCapture console;
  Program prog;
  prog.StartLine("\"AB\",-2.5;TAB(20);\"0123456789\"");
  PrintSpecPtr items, end;
  ASSERT_TRUE(ParsePrintList(prog, &items, &end));
  StringSink sink(25);
  items->Execute(sink);
  end->Execute(sink);
  // TAB(20) is behind the column; the last item folds at the sink's width.
  EXPECT_EQ(sink.text,
            "AB" + std::string(13, ' ') + "-2.5" + std::string(7, ' ') + "\r\n0123456789\r\n");
  EXPECT_EQ(console.Text(), "");
}

// Past 2^31 characters on one line (WIDTH 0) TAB still sees the column behind
// it and writes nothing; SPA still writes its blanks.
TEST(PrintList, TabAndSpaFarOutOnALine) {
  test_program::ConsoleCapture console;
  Program prog;
  prog.StartLine("\"AB\";TAB(5);SPA(2);\"Z\";");
  PrintSpecPtr items, end;
  ASSERT_TRUE(ParsePrintList(prog, &items, &end));
  StringSink sink(0, int64_t{1} << 32);
  items->Execute(sink);
  end->Execute(sink);
  EXPECT_EQ(sink.text, "AB  Z");
}

}  // namespace
