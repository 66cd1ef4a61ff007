// Text files: how a line and an item are cut from the bytes, and what reading
// and writing one file through units does to its text.
#include "files/text_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "base/errors.h"
#include "files/file_units.h"
#include "stmt/targets.h"

namespace {

// A target that keeps what it is given.
class Keep final : public Target {
 public:
  explicit Keep(bool isString, uint32_t room = kMaxStringLength)
      : isString_(isString), room_(room) {}
  bool IsString() const override { return isString_; }
  uint32_t Room() const override { return room_; }
  void Assign(float value) override { number = value; }
  void Assign(std::string_view value) override { text = value; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string&) const override {}

  float number = 0;
  std::string text;

 private:
  bool isString_;
  uint32_t room_;
};

class TextFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/textfile_XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
  }
  void TearDown() override {
    ClearError();
    std::system(("rm -rf " + dir_).c_str());
  }
  std::string Path(const std::string& name) const { return dir_ + "/" + name; }
  std::string Bytes(const char* name) const {
    std::ifstream in(Path(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  void Write(const char* name, const std::string& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
  }
  // The lines LINPUT # reads from the unit to the end, joined by "|".
  static std::string Lines(FileUnit& unit) {
    std::string out;
    Keep line(true);
    while (unit.ReadLine(line) == FileUnit::kOk) out += line.text + "|";
    return out;
  }

  std::string dir_;
};

TextItem Cut(std::string_view text) {
  static std::string scratch;
  TextItem item;
  EXPECT_TRUE(CutTextItem(text, &item, &scratch)) << text;
  return item;
}

TEST(TextItems, NumbersAndStringsAsInputTakesThem) {
  EXPECT_TRUE(Cut(" -3.5E2 ,X").isNumber);
  EXPECT_EQ(Cut(" -3.5E2 ,X").number, -350.0f);
  EXPECT_EQ(Cut(" -3.5E2 ,X").length, 9u);
  EXPECT_EQ(Cut("0x1F").number, 31.0f);
  EXPECT_TRUE(Cut("0x1F").endsLine);
  // Too large for a float, or not a number as written: strings.
  for (const char* text : {"1E40", "INF", "NAN", "1.2.3", "+", "1E", "0x", "12 34"})
    EXPECT_FALSE(Cut(text).isNumber) << text;
  EXPECT_EQ(Cut("  SMITH  , 34").text, "SMITH");
  EXPECT_EQ(Cut("  SMITH  , 34").length, 10u);
  // Quoted: a comma inside is text, "" is one quote, blanks after it are dropped.
  EXPECT_EQ(Cut("\"JONES, A\"  ,29").text, "JONES, A");
  EXPECT_EQ(Cut("\"O\"\"NEIL\"").text, "O\"NEIL");
  EXPECT_FALSE(Cut("\"12\"").isNumber);
  // Not closed, or text after the closing quote: the item as written.
  EXPECT_EQ(Cut("\"OPEN, X").text, "\"OPEN, X");
  EXPECT_EQ(Cut("\"A\"B,C").text, "\"A\"B");
  TextItem item;
  std::string scratch;
  EXPECT_FALSE(CutTextItem("   ", &item, &scratch));
}

TEST_F(TextFileTest, LinesEndWithLfOrCrLfAndBytesPassUnchanged) {
  Write("t", std::string("one\r\ntwo\n\nNUL\0IN\xE9\nlast", 22));
  FileUnit unit;
  ASSERT_EQ(unit.Open(Path("t"), true), OpenStatus::kTextReadOnly);
  EXPECT_EQ(Lines(unit), std::string("one|two||NUL\0IN\xE9|last|", 22));
  Keep line(true);
  EXPECT_EQ(unit.ReadLine(line), FileUnit::kEnd);
  EXPECT_EQ(unit.Type(false), 3.0f);
}

TEST_F(TextFileTest, ALineTooLongStaysToBeReadAgain) {
  Write("t", "ABCDEFGH\nX\n");
  FileUnit unit;
  ASSERT_EQ(unit.Open(Path("t"), false), OpenStatus::kText);
  Keep shortLine(true, 5), longLine(true, 8);
  EXPECT_EQ(unit.ReadLine(shortLine), FileUnit::kFail);
  EXPECT_EQ(g_err.run, err::kStringOverflow);
  ClearError();
  EXPECT_EQ(unit.Read(shortLine, false), FileUnit::kFail);  // an item too
  ClearError();
  EXPECT_EQ(unit.ReadLine(longLine), FileUnit::kOk);
  EXPECT_EQ(longLine.text, "ABCDEFGH");
  EXPECT_EQ(unit.Record(), 2u);
}

TEST_F(TextFileTest, ItemsRunAcrossLinesAndAWordStaysForAString) {
  Write("t", "SMITH,34\n   \n\"JONES, A\",\n7,");
  FileUnit unit;
  ASSERT_EQ(unit.Open(Path("t"), true), OpenStatus::kTextReadOnly);
  Keep text(true), number(false);
  EXPECT_EQ(unit.Type(false), 2.0f);
  EXPECT_EQ(unit.Read(number, false), FileUnit::kFail);
  EXPECT_EQ(g_err.run, err::kDataWrongType);
  ClearError();
  ASSERT_EQ(unit.Read(text, false), FileUnit::kOk);
  EXPECT_EQ(text.text, "SMITH");
  EXPECT_EQ(unit.Item(), 2u);
  ASSERT_EQ(unit.Read(number, false), FileUnit::kOk);
  EXPECT_EQ(number.number, 34.0f);
  // The blank line holds nothing; the comma at a line's end an empty string.
  ASSERT_EQ(unit.Read(text, false), FileUnit::kOk);
  EXPECT_EQ(text.text, "JONES, A");
  ASSERT_EQ(unit.Read(text, false), FileUnit::kOk);
  EXPECT_EQ(text.text, "");
  EXPECT_EQ(unit.Type(false), 1.0f);
  ASSERT_EQ(unit.Read(number, false), FileUnit::kOk);
  ASSERT_EQ(unit.Read(text, false), FileUnit::kOk);
  EXPECT_EQ(text.text, "");
  EXPECT_EQ(unit.Read(text, false), FileUnit::kEnd);
}

TEST_F(TextFileTest, TheFirstWriteReplacesTheTextAndAppendAddsToIt) {
  Write("t", "old text that is long\n");
  FileUnit unit;
  ASSERT_EQ(unit.Open(Path("t"), false), OpenStatus::kText);
  EXPECT_EQ(Bytes("t"), "old text that is long\n");  // opening alone changes nothing
  unit.Text().StartWriting();
  unit.Text().Print("new\n");
  // A second unit reads what the first wrote, from the start.
  FileUnit reader;
  ASSERT_EQ(reader.Open(Path("t"), true), OpenStatus::kTextReadOnly);
  EXPECT_EQ(Lines(reader), "new|");
  EXPECT_EQ(unit.Close(), 0u);
  EXPECT_EQ(Bytes("t"), "new\n");
  ASSERT_EQ(unit.Open(Path("t"), false, FileUnit::Ask::kAppend), OpenStatus::kText);
  unit.Text().StartWriting();
  unit.Text().Print("more");
  EXPECT_EQ(unit.Close(), 0u);
  EXPECT_EQ(Bytes("t"), "new\nmore");
}

TEST_F(TextFileTest, TextAndAppendMakeAMissingFileButNeverOverwriteADataFile) {
  FileUnit unit;
  EXPECT_EQ(unit.Open(Path("none"), false), OpenStatus::kMissing);
  ASSERT_EQ(unit.Open(Path("made"), false, FileUnit::Ask::kText), OpenStatus::kText);
  EXPECT_EQ(unit.Close(), 0u);
  EXPECT_EQ(Bytes("made"), "");
  ASSERT_EQ(DataFile::Create(Path("d"), 2, 8), CreateStatus::kCreated);
  EXPECT_EQ(unit.Open(Path("d"), false, FileUnit::Ask::kAppend), OpenStatus::kFailed);
  EXPECT_EQ(unit.Open(Path("d"), false), OpenStatus::kReadWrite);
  EXPECT_FALSE(unit.IsText());
}

TEST_F(TextFileTest, LargeOutputIsWrittenInWholeLines) {
  FileUnit unit;
  ASSERT_EQ(unit.Open(Path("big"), false, FileUnit::Ask::kText), OpenStatus::kText);
  unit.Text().StartWriting();
  std::string line(99, 'x');
  line += '\n';
  for (int i = 0; i < 2000; ++i) unit.Text().Print(line);
  // Written as the buffer filled: a whole number of lines is in the file already.
  std::string before = Bytes("big");
  EXPECT_GT(before.size(), 0u);
  EXPECT_EQ(before.size() % 100, 0u);
  EXPECT_EQ(unit.Close(), 0u);
  EXPECT_EQ(Bytes("big").size(), 200000u);
}

}  // namespace
