// The stream back end and piped input through the string console.
#include <gtest/gtest.h>

#include "console/console.h"

namespace {

TEST(StreamConsole, FoldsCrLfAndKeepsLoneLineEnds) {
  std::string out;
  {
    auto con = MakeStringConsole(&out, "");
    con->WriteEsc("a\r\nb\nc\rd\r\r\ne\r");
    con->Write("f\n");
  }
  EXPECT_EQ(out, "a\nb\nc\rd\r\ne\rf\n");
}

TEST(StreamConsole, EscapesAreConsumedAndNeverBreakLines) {
  std::string out;
  auto con = MakeStringConsole(&out, "");
  con->WriteEsc("\x1b[31mred\x1b[0m \x1b[5;Hx\x1b[99m");
  con->WriteEsc(std::string(300, '-'));
  con->Flush();
  EXPECT_EQ(out, "red xm" + std::string(300, '-'));
  EXPECT_EQ(con->CursorX(), 307);  // the model still moved to column 5
}

TEST(StreamConsole, PipedLinesAreEchoedAndEndOfInputReported) {
  std::string out;
  std::string input = "RUN\r\n\nLIST 10";
  input += '\0';
  input += "\nlast";
  auto con = MakeStringConsole(&out, input);
  char line[Console::kLineMax + 1];
  EXPECT_EQ(con->ReadLine(line), 3);
  EXPECT_STREQ(line, "RUN");
  EXPECT_EQ(con->ReadLine(line), 0);
  EXPECT_EQ(con->ReadLine(line), 7);
  EXPECT_STREQ(line, "LIST 10");  // NUL dropped
  EXPECT_EQ(con->ReadLine(line), 4);
  EXPECT_STREQ(line, "last");
  EXPECT_EQ(con->ReadLine(line), Console::kEndOfInput);
  EXPECT_EQ(con->ReadLine(line), Console::kEndOfInput);
  EXPECT_EQ(out, "RUN\n\nLIST 10\nlast\n");
}

TEST(StreamConsole, OverlongPipedLineKeepsItsStart) {
  std::string out;
  std::string input(3000, 'x');
  input += "\nok\n";
  auto con = MakeStringConsole(&out, input);
  char line[Console::kLineMax + 1];
  EXPECT_EQ(con->ReadLine(line), Console::kLineMax);
  EXPECT_EQ(con->ReadLine(line), 2);
  EXPECT_STREQ(line, "ok");
}

}  // namespace
