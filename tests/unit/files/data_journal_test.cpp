// The rollback journal: what counts as whole, what an open puts back, and a
// statement across records whose writing fails half-way.
#include "files/data_journal.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "files/data_file.h"

namespace {

class Journal : public ::testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/journal_XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
  }
  void TearDown() override { std::system(("rm -rf " + dir_).c_str()); }
  std::string Path(const std::string& name) const { return dir_ + "/" + name; }
  std::string Bytes(const std::string& name) const {
    std::ifstream in(Path(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
  }
  static float NumberAt(DataFile& file, uint32_t record, uint32_t word) {
    EXPECT_TRUE(file.Load(record, true));
    FileItem item = file.ItemAt(word);
    return item.kind == FileItem::kNumber ? item.number : -1.0f;
  }

  std::string dir_;
};

const uint8_t kOld[] = {1, 2, 3, 4, 5};

TEST_F(Journal, OnlyAWholeJournalParses) {
  data_journal::Builder builder;
  builder.Start(8, 3);
  EXPECT_TRUE(builder.Empty());
  builder.Add(3, 1, kOld, sizeof kOld);
  builder.Add(1, 0, kOld, 2);
  std::vector<uint8_t> bytes = builder.Finish();
  std::vector<data_journal::Entry> entries;
  ASSERT_TRUE(data_journal::Parse(bytes.data(), bytes.size(), 8, 3, &entries));
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].record, 3u);
  EXPECT_EQ(entries[0].offset, 1u);
  EXPECT_EQ(std::vector<uint8_t>(entries[0].bytes, entries[0].bytes + 5),
            std::vector<uint8_t>(kOld, kOld + 5));
  // Another file's shape, a cut anywhere, a byte changed anywhere: not whole.
  EXPECT_FALSE(data_journal::Parse(bytes.data(), bytes.size(), 9, 3, &entries));
  EXPECT_FALSE(data_journal::Parse(bytes.data(), bytes.size(), 8, 2, &entries));
  for (size_t cut = 0; cut < bytes.size(); ++cut)
    EXPECT_FALSE(data_journal::Parse(bytes.data(), cut, 8, 3, &entries)) << cut;
  for (size_t at = 0; at < bytes.size(); ++at) {
    std::vector<uint8_t> changed = bytes;
    changed[at] ^= 0x10;
    EXPECT_FALSE(data_journal::Parse(changed.data(), changed.size(), 8, 3, &entries)) << at;
  }
  // An entry must lie inside one record (17 bytes for 8 words).
  builder.Start(8, 3);
  builder.Add(1, 15, kOld, 3);
  const std::vector<uint8_t>& past = builder.Finish();
  EXPECT_FALSE(data_journal::Parse(past.data(), past.size(), 8, 3, &entries));
}

// A program killed while writing left its journal: the next open puts the old
// bytes back and clears it. A torn journal means the records were never touched.
TEST_F(Journal, AnOpenRollsBackAKilledStatement) {
  ASSERT_EQ(DataFile::Create(Path("a"), 2, 8), CreateStatus::kCreated);
  std::string before = Bytes("a");
  {
    DataFile file;
    ASSERT_EQ(file.Open(Path("a"), false), OpenStatus::kReadWrite);
    ASSERT_TRUE(file.Load(1));
    file.PutNumber(0, 7.0f);
    ASSERT_TRUE(file.Commit());
  }
  std::string after = Bytes("a");
  // What a journal of that statement held: record 1's tag and first two words, as before.
  data_journal::Builder builder;
  builder.Start(8, 2);
  builder.Add(1, 0, reinterpret_cast<const uint8_t*>(before.data()) + 32, 5);
  std::vector<uint8_t> journal = builder.Finish();
  std::vector<uint8_t> torn = journal;
  torn.back() ^= 1;
  Write("a.journal", std::string(torn.begin(), torn.end()));
  {
    DataFile file;
    ASSERT_EQ(file.Open(Path("a"), false), OpenStatus::kReadWrite);
    EXPECT_EQ(NumberAt(file, 1, 0), 7.0f);
  }
  EXPECT_EQ(Bytes("a"), after);
  // A journal larger than any statement writes is not read at all, not even its
  // length's worth of memory: a terabyte (sparse) after a good header.
  Write("a.journal", std::string(journal.begin(), journal.end()));
  ASSERT_EQ(truncate(Path("a.journal").c_str(), off_t{1} << 40), 0);
  {
    DataFile file;
    ASSERT_EQ(file.Open(Path("a"), false), OpenStatus::kReadWrite);
    EXPECT_EQ(NumberAt(file, 1, 0), 7.0f);
  }
  Write("a.journal", std::string(journal.begin(), journal.end()));
  {
    DataFile file;
    ASSERT_EQ(file.Open(Path("a"), true), OpenStatus::kReadOnly);  // puts back all the same
    EXPECT_EQ(file.ItemAt(0).kind, FileItem::kEndFile);
  }
  EXPECT_EQ(Bytes("a"), before);
  EXPECT_EQ(access(Path("a.journal").c_str(), F_OK), -1);  // cleared, then removed
}

// A statement whose second record cannot be written (past the file size limit)
// puts its first record back: nothing of it stays.
TEST_F(Journal, AFailedStatementLeavesNothing) {
  ASSERT_EQ(DataFile::Create(Path("a"), 10, 256), CreateStatus::kCreated);
  std::string before = Bytes("a");
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    signal(SIGXFSZ, SIG_IGN);
    DataFile file;
    if (file.Open(Path("a"), false) != OpenStatus::kReadWrite || !file.Load(1)) _exit(2);
    file.PutNumber(0, 1.0f);
    if (!file.Load(10)) _exit(3);
    file.PutNumber(0, 10.0f);
    struct rlimit limit = {4096, 4096};  // record 10 begins at byte 4928
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(4);
    _exit(!file.Commit() && file.Error() == EFBIG ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  EXPECT_EQ(Bytes("a"), before);
  DataFile file;
  ASSERT_EQ(file.Open(Path("a"), false), OpenStatus::kReadWrite);
  EXPECT_EQ(NumberAt(file, 1, 0), -1.0f);
}

// Once a journal has been used and every unit has left, it is removed.
TEST_F(Journal, TheLastUnitRemovesAClearedJournal) {
  ASSERT_EQ(DataFile::Create(Path("a"), 2, 8), CreateStatus::kCreated);
  DataFile one, two;
  ASSERT_EQ(one.Open(Path("a"), false), OpenStatus::kReadWrite);
  ASSERT_EQ(two.Open(Path("a"), false), OpenStatus::kReadWrite);
  ASSERT_TRUE(one.Load(1));
  one.PutNumber(0, 1.0f);
  ASSERT_TRUE(one.Load(2));
  one.PutNumber(0, 2.0f);
  ASSERT_TRUE(one.Commit());  // two records: through the journal
  EXPECT_EQ(access(Path("a.journal").c_str(), F_OK), 0);
  EXPECT_EQ(NumberAt(two, 1, 0), 1.0f);
  EXPECT_EQ(NumberAt(two, 2, 0), 2.0f);
  one.Close();
  EXPECT_EQ(access(Path("a.journal").c_str(), F_OK), 0);
  two.Close();
  EXPECT_EQ(access(Path("a.journal").c_str(), F_OK), -1);
}

}  // namespace
