// The stream back end and piped input through the string console.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "console/console.h"
#include "console/key_source.h"

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

// A line that never ends costs no more than its first 2047 characters, and
// every byte is looked at once.
TEST(StreamConsole, EndlessPipedLineIsReadInLinearTime) {
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  std::thread writer([fd = fds[1]] {
    std::string block(1 << 20, 'x');
    for (int i = 0; i < 8; ++i)
      if (write(fd, block.data(), block.size()) != static_cast<ssize_t>(block.size())) break;
    (void)!write(fd, "\r\nok\r", 5);
    close(fd);
  });
  auto in = MakePipedInput(fds[0]);
  char line[Console::kLineMax + 1];
  auto start = std::chrono::steady_clock::now();
  int n;
  while ((n = in->WaitLine(line, 50)) == KeySource::kNone) {
  }
  EXPECT_EQ(n, Console::kLineMax);
  EXPECT_EQ(std::string(line), std::string(Console::kLineMax, 'x'));
  while ((n = in->WaitLine(line, 50)) == KeySource::kNone) {
  }
  EXPECT_EQ(n, 3);  // a carriage return at the very end is text
  EXPECT_STREQ(line, "ok\r");
  while ((n = in->WaitLine(line, 50)) == KeySource::kNone) {
  }
  EXPECT_EQ(n, KeySource::kEnd);
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 10.0);
  writer.join();
  close(fds[0]);
}

// Messages are never cut: a long file name keeps the line end after it.
TEST(StreamConsole, LongMessagesKeepTheirLineEnd) {
  std::string out;
  auto con = MakeStringConsole(&out, "");
  std::string name(600, 'n');
  con->Printf("Unable to open %s.\n", name.c_str());
  con->Flush();
  EXPECT_EQ(out, "Unable to open " + name + ".\n");
}

}  // namespace
