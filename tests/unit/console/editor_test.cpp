// The template editor driven by scripted key codes.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>

#include "base/errors.h"
#include "console/console.h"
#include "console/console_backend.h"
#include "console/key_source.h"
#include "console/line_editor.h"
#include "platform/break_flag.h"

namespace {

class ScriptedKeys final : public KeySource {
 public:
  explicit ScriptedKeys(std::deque<int>* keys) : keys_(keys) {}
  int WaitKey(int) override {
    if (keys_->empty()) return kEnd;
    int k = keys_->front();
    keys_->pop_front();
    return k;
  }

 private:
  std::deque<int>* keys_;
};

class EditorTest : public ::testing::Test {
 protected:
  EditorTest() {
    auto mem = std::make_unique<MemoryBackend>(40, 10);
    screen = mem.get();
    con = std::make_unique<Console>(std::move(mem), std::make_unique<ScriptedKeys>(&keys));
  }
  void Type(std::string_view s) {
    for (char c : s) keys.push_back(static_cast<unsigned char>(c));
  }
  std::string Read(std::initializer_list<int> extra = {}) {
    keys.insert(keys.end(), extra.begin(), extra.end());
    keys.push_back(key::kEnter);
    int n = con->ReadLine(line);
    EXPECT_GE(n, 0);
    return n >= 0 ? std::string(line, n) : std::string();
  }
  std::string Enter(std::string_view typed, std::initializer_list<int> extra = {}) {
    Type(typed);
    return Read(extra);
  }

  std::deque<int> keys;
  MemoryBackend* screen;
  std::unique_ptr<Console> con;
  char line[Console::kLineMax + 1];
};

TEST_F(EditorTest, F3RepeatsAndF1CopiesOneCharacter) {
  EXPECT_EQ(Enter("RUN"), "RUN");
  EXPECT_EQ(Read({key::kF3}), "RUN");
  EXPECT_EQ(Read({key::kF1}), "R");  // and "R" is the template now
  Enter("RUN");
  EXPECT_EQ(Read({key::kRight, key::kRight}), "RU");
  EXPECT_EQ(screen->Row(0), "RUN");
  EXPECT_EQ(screen->Row(1), "RUN");
  EXPECT_EQ(screen->Row(2), "R");
  EXPECT_EQ(screen->Row(4), "RU");
}

TEST_F(EditorTest, TypingOverwritesTemplatePosition) {
  Enter("LIST 10");
  EXPECT_EQ(Enter("RU", {key::kF3}), "RUST 10");
  Enter("LIST 10");
  // A control character is not entered but steps over one template character.
  EXPECT_EQ(Read({1, key::kF3}), "IST 10");
}

TEST_F(EditorTest, F2CopiesUpToSearchCharacterAndF4Skips) {
  Enter("LIST 10 20");
  EXPECT_EQ(Read({key::kF2, '2'}), "LIST 10 ");
  Enter("LIST 10 20");
  EXPECT_EQ(Read({key::kF2, '0', key::kF2, key::kF2}), "LIST 10 2");  // F2 again repeats '0'
  Enter("LIST 10 20");
  EXPECT_EQ(Read({key::kF4, '1', key::kF3}), "10 20");
  // Q is not found; a prefixed key cancels a search and is used up.
  EXPECT_EQ(Read({key::kF2, 'Q', key::kF2, key::kF1, key::kF1}), "1");
  Enter("LIST 10 20");
  EXPECT_EQ(Read({key::kDel, key::kDel, key::kF3}), "ST 10 20");
}

TEST_F(EditorTest, EscapeDiscardsLineAndKeepsTemplate) {
  Enter("OLD");
  Type("junk");
  keys.push_back(key::kEscape);
  EXPECT_EQ(Read({key::kF3}), "OLD");
  EXPECT_EQ(screen->Row(1), "junk@");
  EXPECT_EQ(screen->Row(2), "OLD");
}

TEST_F(EditorTest, EmptyEnterKeepsTemplateAndF5ReplacesIt) {
  Enter("KEEP");
  EXPECT_EQ(Read(), "");
  EXPECT_EQ(Read({key::kF3}), "KEEP");
  Type("AB");
  keys.push_back(key::kF5);
  EXPECT_EQ(Read({'C'}), "ABC");  // the line stays as typed after F5
  EXPECT_EQ(Read({key::kF3}), "ABC");
}

TEST_F(EditorTest, BackspaceRemovesAndStepsTemplateBack) {
  Enter("HELLO");
  EXPECT_EQ(Read({key::kF1, key::kF1, key::kBackspace, key::kF3}), "HELLO");
  EXPECT_EQ(Enter("AB", {key::kBackspace, key::kLeft, key::kBackspace, 'Z'}), "Z");
  EXPECT_EQ(screen->Row(2), "Z");
}

TEST_F(EditorTest, UpAndDownBringBackEarlierLines) {
  EXPECT_EQ(Read({key::kUp, key::kDown}), "");  // nothing to bring back yet
  Enter("LIST 10");
  Enter("RUN");
  Enter("RUN");  // a repeat is kept once
  EXPECT_EQ(Read({key::kUp, key::kUp, key::kUp}), "LIST 10");
  EXPECT_EQ(screen->Row(4), "LIST 10");  // the shorter line left no trace
  EXPECT_EQ(Read({key::kUp, key::kUp, key::kDown}), "LIST 10");
  // The line being typed comes back below the newest one.
  EXPECT_EQ(Enter("PRI", {key::kUp, key::kUp, key::kDown, key::kDown, 'N'}), "PRIN");
  // A line brought back is typed over the template: F3 copies what lies beyond it.
  Enter("RUN 100");
  EXPECT_EQ(Read({key::kUp, key::kUp, key::kF3}), "PRIN100");
  EXPECT_EQ(Read({key::kUp, key::kBackspace, key::kBackspace, key::kF3}), "PRIN100");
}

TEST(LineHistory, KeepsTheNewestLines) {
  LineHistory history;
  for (int i = 0; i < 1005; ++i) history.Add(std::to_string(i));
  history.Add("1004");
  history.Add("");
  ASSERT_EQ(history.Size(), LineHistory::kMaxLines);
  EXPECT_EQ(history.At(0), "5");
  EXPECT_EQ(history.At(999), "1004");
}

TEST_F(EditorTest, FullLineRingsBellOnce) {
  std::string out;
  Console streamed(MakeStringBackend(&out), std::make_unique<ScriptedKeys>(&keys));
  Type(std::string(Console::kLineMax + 3, 'x'));
  keys.push_back(key::kBackspace);
  Type("yz");
  keys.push_back(key::kEnter);
  ASSERT_EQ(streamed.ReadLine(line), Console::kLineMax);
  std::string got(line);
  EXPECT_EQ(got.size(), static_cast<size_t>(Console::kLineMax));
  EXPECT_EQ(got.substr(got.size() - 2), "xy");  // z refused again, silently
  EXPECT_EQ(std::count(out.begin(), out.end(), '\a'), 2);
  EXPECT_NE(out.find(std::string(Console::kLineMax, 'x') + "\a"), std::string::npos);
}

TEST_F(EditorTest, BreakAndEndOfInput) {
  g_breakFlag = 1;
  Type("abc");
  EXPECT_EQ(con->ReadLine(line), Console::kBreakRead);
  EXPECT_EQ(g_err.run, err::kBreak);
  EXPECT_FALSE(BreakPending());
  g_err.run = 0;
  keys.clear();
  EXPECT_EQ(con->ReadLine(line), Console::kEndOfInput);
}

// EDIT's read: the text stands on the line as if typed and is the template, so
// Backspace walks back through both and F3 copies the rest; Escape ends the read.
TEST_F(EditorTest, EditLineStartsFromItsText) {
  keys.insert(keys.end(), {key::kBackspace, key::kBackspace, key::kBackspace});
  Type("X=2");
  keys.push_back(key::kEnter);
  ASSERT_EQ(con->EditLine(line, "10 A=1"), 6);
  EXPECT_EQ(std::string(line), "10 X=2");
  EXPECT_EQ(screen->Row(0), "10 X=2");
  // Back to the number, one character typed over, the rest copied.
  keys.insert(keys.end(), 7, key::kBackspace);
  Type("2");
  keys.insert(keys.end(), {key::kF3, key::kEnter});
  ASSERT_EQ(con->EditLine(line, "10 PRINT"), 8);
  EXPECT_EQ(std::string(line), "12 PRINT");
  keys.insert(keys.end(), {key::kBackspace, 'Y', key::kEscape});
  EXPECT_EQ(con->EditLine(line, "20 X"), Console::kAbandoned);
  EXPECT_EQ(std::string(line), "");
  EXPECT_EQ(screen->Row(2), "20 Y@");
  // The plain reader keeps Escape as the abandoning of the line alone.
  Type("AB");
  keys.push_back(key::kEscape);
  EXPECT_EQ(Enter("CD"), "CD");
}

// Piped lines come whole: the text is shown, and the line read replaces it.
TEST(EditLinePiped, ShowsTheTextAndReadsItsReplacement) {
  std::string out;
  Console con(MakeStringBackend(&out), MakeStringInput("20 PRINT 2\n"));
  char line[Console::kLineMax + 1];
  ASSERT_EQ(con.EditLine(line, "20 PRINT 1"), 10);
  EXPECT_EQ(std::string(line), "20 PRINT 2");
  con.Flush();
  EXPECT_EQ(out, "20 PRINT 1\n20 PRINT 2\n");
  EXPECT_EQ(con.EditLine(line, ""), Console::kEndOfInput);
}

TEST(TimedRead, GivesUpAfterDeadline) {
  std::string out;
  class Silent final : public KeySource {
    int WaitKey(int) override { return kNone; }
  };
  Console con(MakeStringBackend(&out), std::make_unique<Silent>());
  char line[Console::kLineMax + 1];
  EXPECT_EQ(con.ReadLineTimed(line, 0, nullptr), Console::kTimedOut);
}

}  // namespace
