// The data file layout: what CREATE writes, what a reader accepts, and how it
// refuses damaged files without reading past what the file holds.
#include "files/data_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>

namespace {

class DataFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/datafile_XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
  }
  void TearDown() override { std::system(("rm -rf " + dir_).c_str()); }
  std::string Path(const std::string& name) const { return dir_ + "/" + name; }
  std::string Bytes(const char* name) const {
    std::ifstream in(Path(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  void Write(const char* name, const std::string& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
  }
  // A sound header followed by the records' bytes, all zero.
  static std::string Header(uint16_t version, uint16_t words, uint32_t records) {
    std::string h(
        "\x89"
        "BDF\r\n\x1a\n",
        8);
    h += static_cast<char>(version & 0xFF);
    h += static_cast<char>(version >> 8);
    h += static_cast<char>(words & 0xFF);
    h += static_cast<char>(words >> 8);
    for (int i = 0; i < 4; ++i) h += static_cast<char>((records >> (8 * i)) & 0xFF);
    h.append(16, '\0');
    return h;
  }
  OpenStatus OpenOf(const char* name) {
    DataFile file;
    return file.Open(Path(name), false);
  }

  std::string dir_;
};

TEST_F(DataFileTest, CreateWritesTheHeaderAndEmptyRecords) {
  ASSERT_EQ(DataFile::Create(Path("a"), 3, 10), CreateStatus::kCreated);
  std::string bytes = Bytes("a");
  EXPECT_EQ(bytes.size(), 32u + 3 * (2 + 20));
  EXPECT_EQ(bytes.substr(0, 32), Header(1, 10, 3));
  EXPECT_EQ(bytes.find_first_not_of('\0', 32), std::string::npos);
  DataFile file;
  ASSERT_EQ(file.Open(Path("a"), false), OpenStatus::kReadWrite);
  EXPECT_EQ(file.Records(), 3u);
  EXPECT_EQ(file.Words(), 10u);
  for (uint32_t r = 1; r <= 3; ++r) {
    ASSERT_TRUE(file.Load(r));
    EXPECT_EQ(file.ItemAt(0).kind, FileItem::kEndFile);
  }
  // Rounded sizes; the default record is 256 words.
  EXPECT_EQ(DataFile::Create(Path("b"), 1.4, data_file::kDefaultWords), CreateStatus::kCreated);
  EXPECT_EQ(Bytes("b").size(), 32u + 32 + 512);
}

TEST_F(DataFileTest, CreateRefusesSizesAndKeepsPresentFiles) {
  for (auto [records, words] : {std::pair<double, double>{0, 8},
                                {0.4, 8},
                                {-1, 8},
                                {1, 0},
                                {1, 257},
                                {NAN, 8},
                                {1, NAN},
                                {INFINITY, 8},
                                {2e6, 256}})
    EXPECT_EQ(DataFile::Create(Path("x"), records, words), CreateStatus::kBadSize)
        << records << "," << words;
  EXPECT_EQ(access(Path("x").c_str(), F_OK), -1);
  Write("kept", "text");
  EXPECT_EQ(DataFile::Create(Path("kept"), 1, 8), CreateStatus::kExists);
  EXPECT_EQ(Bytes("kept"), "text");
  EXPECT_EQ(DataFile::Create(Path("no/folder"), 1, 8), CreateStatus::kFailed);
  // 1 GiB is the limit: 1,973,790 records of 256 words fit, one more does not.
  uint64_t fit = ((uint64_t{1} << 30) - 32) / data_file::RecordBytes(256);
  EXPECT_EQ(DataFile::Create(Path("big"), static_cast<double>(fit + 1), 256),
            CreateStatus::kBadSize);
}

TEST_F(DataFileTest, ItemsKeepTheirBitsAndLayout) {
  ASSERT_EQ(DataFile::Create(Path("a"), 2, 16), CreateStatus::kCreated);
  const float values[] = {0.0f,
                          -0.0f,
                          1.5f,
                          -3.25e38f,
                          INFINITY,
                          std::nanf("0x123"),
                          std::numeric_limits<float>::denorm_min()};
  {
    DataFile file;
    ASSERT_EQ(file.Open(Path("a"), false), OpenStatus::kReadWrite);
    ASSERT_TRUE(file.Load(1));
    for (uint32_t i = 0; i < 7; ++i) file.PutNumber(2 * i, values[i]);
    file.PutEndRecord(14);
    ASSERT_TRUE(file.Load(2));  // record 1 is kept until the commit
    file.PutString(0, std::string("AB\0C", 4));
    file.PutString(3, "");
    file.PutString(4, std::string(22, 'x'));  // 1 + 11 words: the record is full
  }
  DataFile file;
  ASSERT_EQ(file.Open(Path("a"), true), OpenStatus::kReadOnly);
  EXPECT_FALSE(file.Writable());
  ASSERT_TRUE(file.Load(1));
  for (uint32_t i = 0; i < 7; ++i) {
    FileItem item = file.ItemAt(2 * i);
    ASSERT_EQ(item.kind, FileItem::kNumber);
    EXPECT_EQ(item.words, 2u);
    EXPECT_EQ(std::memcmp(&item.number, &values[i], 4), 0) << i;
  }
  EXPECT_EQ(file.ItemAt(14).kind, FileItem::kEndRecord);
  EXPECT_EQ(file.ItemAt(16).kind, FileItem::kEndRecord);  // the physical end
  EXPECT_EQ(file.ItemAt(16).words, 0u);
  ASSERT_TRUE(file.Load(2));
  FileItem a = file.ItemAt(0), empty = file.ItemAt(3), full = file.ItemAt(4);
  EXPECT_EQ(a.text, std::string_view("AB\0C", 4));
  EXPECT_EQ(a.words, 3u);
  EXPECT_EQ(empty.kind, FileItem::kString);
  EXPECT_EQ(empty.words, 1u);
  EXPECT_EQ(full.text, std::string(22, 'x'));
  // The tag map: words 0, 2, ... 12 of record 1 start numbers.
  std::string bytes = Bytes("a");
  EXPECT_EQ(static_cast<uint8_t>(bytes[32]), 0x55u);
  EXPECT_EQ(static_cast<uint8_t>(bytes[33]), 0x15u);
}

TEST_F(DataFileTest, DamagedItemsAreReportedNotRead) {
  ASSERT_EQ(DataFile::Create(Path("a"), 1, 4), CreateStatus::kCreated);
  std::string bytes = Bytes("a");
  bytes[32] = 0x08;           // a number tag on the last word: its second word is missing
  bytes[33 + 2 * 0] = 2 + 7;  // word 0: a string of 7 characters needs 5 words of 4
  Write("a", bytes);
  DataFile file;
  ASSERT_EQ(file.Open(Path("a"), false), OpenStatus::kReadWrite);
  ASSERT_TRUE(file.Load(1));
  EXPECT_EQ(file.ItemAt(0).kind, FileItem::kDamaged);
  EXPECT_EQ(file.ItemAt(3).kind, FileItem::kDamaged);
  EXPECT_EQ(file.ItemAt(1).kind, FileItem::kEndFile);
}

TEST_F(DataFileTest, OpenTellsWhatIsWrong) {
  EXPECT_EQ(OpenOf("missing"), OpenStatus::kMissing);
  EXPECT_EQ(OpenOf("missing/deeper"), OpenStatus::kMissing);
  Write("text", "10 PRINT \"HELLO\"\n");
  EXPECT_EQ(OpenOf("text"), OpenStatus::kNotData);
  Write("empty", "");
  EXPECT_EQ(OpenOf("empty"), OpenStatus::kNotData);
  Write("cut", std::string("\x89"
                           "BDF",
                           4));
  EXPECT_EQ(OpenOf("cut"), OpenStatus::kDamaged);
  std::string record(1 + 16, '\0');
  Write("good", Header(1, 8, 2) + record + record);
  EXPECT_EQ(OpenOf("good"), OpenStatus::kReadWrite);
  Write("short", Header(1, 8, 2) + record);
  EXPECT_EQ(OpenOf("short"), OpenStatus::kDamaged);
  Write("long", Header(1, 8, 1) + record + "x");
  EXPECT_EQ(OpenOf("long"), OpenStatus::kDamaged);
  Write("newer", Header(2, 8, 1) + record);
  EXPECT_EQ(OpenOf("newer"), OpenStatus::kDamaged);
  Write("nowords", Header(1, 0, 1));
  EXPECT_EQ(OpenOf("nowords"), OpenStatus::kDamaged);
  Write("norecords", Header(1, 8, 0));
  EXPECT_EQ(OpenOf("norecords"), OpenStatus::kDamaged);
  std::string reserved = Header(1, 8, 1) + record;
  reserved[20] = 1;
  Write("reserved", reserved);
  EXPECT_EQ(OpenOf("reserved"), OpenStatus::kDamaged);
  // A huge record count in a small file costs nothing: the sizes disagree.
  Write("huge", Header(1, 256, 0xFFFFFFFF) + record);
  EXPECT_EQ(OpenOf("huge"), OpenStatus::kDamaged);
  // Neither a folder nor a FIFO without a writer is read, and neither blocks.
  mkdir(Path("folder").c_str(), 0777);
  EXPECT_EQ(OpenOf("folder"), OpenStatus::kFailed);
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0666), 0);
  EXPECT_EQ(OpenOf("fifo"), OpenStatus::kFailed);
}

// A write changes only the items written: another opening's item in the same
// record, written after this one read it, survives, whether or not the write
// changes the record's tag map.
TEST_F(DataFileTest, WritesChangeOnlyTheirItems) {
  ASSERT_EQ(DataFile::Create(Path("a"), 2, 16), CreateStatus::kCreated);
  DataFile one, two;
  ASSERT_EQ(one.Open(Path("a"), false), OpenStatus::kReadWrite);
  ASSERT_EQ(two.Open(Path("a"), false), OpenStatus::kReadWrite);
  ASSERT_TRUE(one.Load(1));
  one.PutNumber(0, 1.0f);
  one.PutNumber(2, 2.0f);
  ASSERT_TRUE(one.Commit());
  ASSERT_TRUE(two.Load(1));
  two.PutNumber(2, 22.0f);  // the tags stay: only the words are written
  two.PutString(4, "NEW");  // new tags, merged into the map as the file holds it
  ASSERT_TRUE(two.Commit());
  one.PutNumber(0, 11.0f);  // one's copy of the record is stale
  one.PutNumber(8, 5.0f);
  ASSERT_TRUE(one.Commit());
  DataFile check;
  ASSERT_EQ(check.Open(Path("a"), true), OpenStatus::kReadOnly);
  ASSERT_TRUE(check.Load(1));
  EXPECT_EQ(check.ItemAt(0).number, 11.0f);
  EXPECT_EQ(check.ItemAt(2).number, 22.0f);
  EXPECT_EQ(check.ItemAt(4).text, "NEW");
  EXPECT_EQ(check.ItemAt(8).number, 5.0f);
}

// LOCK belongs to the program: two of its units on one file never wait for each other.
TEST_F(DataFileTest, UnitsOfOneProgramShareTheLock) {
  ASSERT_EQ(DataFile::Create(Path("a"), 1, 8), CreateStatus::kCreated);
  DataFile one, two;
  ASSERT_EQ(one.Open(Path("a"), false), OpenStatus::kReadWrite);
  ASSERT_EQ(two.Open(Path("a"), true), OpenStatus::kReadOnly);
  EXPECT_EQ(one.Lock(), host::LockWait::kLocked);
  EXPECT_EQ(two.Lock(), host::LockWait::kLocked);
  one.Close();  // two still holds it
  EXPECT_EQ(two.Lock(), host::LockWait::kLocked);
  two.Unlock();
}

// CREATE has its space before it answers, and leaves no temporary behind.
TEST_F(DataFileTest, CreateReservesTheSpace) {
  ASSERT_EQ(DataFile::Create(Path("a"), 2000, 256), CreateStatus::kCreated);
  struct stat st;
  ASSERT_EQ(stat(Path("a").c_str(), &st), 0);
  EXPECT_GE(static_cast<uint64_t>(st.st_blocks) * 512, static_cast<uint64_t>(st.st_size));
  EXPECT_EQ(DataFile::Create(Path("a"), 1, 8), CreateStatus::kExists);
  EXPECT_EQ(std::system(("test $(ls -A " + dir_ + " | wc -l) -eq 1").c_str()), 0);
  // Every record must be reachable by a float: 2^24 - 1 records at most.
  EXPECT_EQ(DataFile::Create(Path("b"), 16777216, 1), CreateStatus::kBadSize);
  // A name the system would cut at its NUL byte is no name.
  EXPECT_EQ(DataFile::Create(Path(std::string("c\0d", 3)), 1, 8), CreateStatus::kBadName);
  DataFile file;
  EXPECT_EQ(file.Open(Path("a") + std::string(1, '\0') + "x", false), OpenStatus::kBadName);
}

TEST_F(DataFileTest, TwoOpeningsSeeEachOthersWrites) {
  ASSERT_EQ(DataFile::Create(Path("a"), 1, 8), CreateStatus::kCreated);
  DataFile one, two;
  ASSERT_EQ(one.Open(Path("a"), false), OpenStatus::kReadWrite);
  ASSERT_EQ(two.Open(Path("a"), false), OpenStatus::kReadWrite);
  ASSERT_TRUE(two.Load(1));
  ASSERT_TRUE(one.Load(1));
  one.PutNumber(0, 7.0f);
  ASSERT_TRUE(one.Commit());
  ASSERT_TRUE(two.Load(1));
  EXPECT_EQ(two.ItemAt(0).number, 7.0f);
}

TEST_F(DataFileTest, AReadOnlyFileOpensForReading) {
  ASSERT_EQ(DataFile::Create(Path("a"), 1, 8), CreateStatus::kCreated);
  chmod(Path("a").c_str(), 0444);
  EXPECT_EQ(OpenOf("a"), OpenStatus::kReadOnly);
}

}  // namespace
