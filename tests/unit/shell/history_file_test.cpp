// The shell's history file: where it lives, what it keeps, and that a file it
// cannot use never gets in the way.
#include "shell/history_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

#include "console/line_history.h"

namespace {

namespace fs = std::filesystem;

// Sets an environment variable for one test and puts the old value back.
class EnvVar final {
 public:
  EnvVar(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value)
      setenv(name, value, 1);
    else
      unsetenv(name);
  }
  ~EnvVar() {
    if (old_)
      setenv(name_, old_->c_str(), 1);
    else
      unsetenv(name_);
  }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

class History : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("basic_history_" + std::to_string(getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  static std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  fs::path dir_;
};

TEST_F(History, WhereTheFileLives) {
  EnvVar home("HOME", "/home/u");
  {
    EnvVar off("BASIC_HISTORY", "");
    EXPECT_EQ(HistoryFile::DefaultPath(), "");
  }
  EnvVar unset("BASIC_HISTORY", nullptr);
  {
    EnvVar state("XDG_STATE_HOME", "/var/state");
    EXPECT_EQ(HistoryFile::DefaultPath(), "/var/state/basic/history");
  }
  {
    EnvVar relative("XDG_STATE_HOME", "state");  // not absolute: ignored
    EXPECT_EQ(HistoryFile::DefaultPath(), "/home/u/.local/state/basic/history");
  }
  EnvVar chosen("BASIC_HISTORY", "/tmp/mine");
  EXPECT_EQ(HistoryFile::DefaultPath(), "/tmp/mine");
}

TEST_F(History, KeepsTheNewestLinesAcrossSessions) {
  std::string path = Path("state/basic/history");
  {
    HistoryFile file(path);
    EXPECT_TRUE(file.Load().empty());
    file.Append("10 PRINT 1");
    file.Append("10 PRINT 1");  // a repeat is written once
    file.Append("");
    file.Append("RUN");
  }
  EXPECT_EQ(Read(path), "10 PRINT 1\nRUN\n");
  EXPECT_EQ(fs::status(path).permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write);
  HistoryFile again(path);
  EXPECT_EQ(again.Load(), (std::vector<std::string>{"10 PRINT 1", "RUN"}));
  again.Append("RUN");  // still the newest line
  for (int i = 0; i < 1000; ++i) again.Append("LIST " + std::to_string(i));
  std::vector<std::string> kept = HistoryFile(path).Load();
  ASSERT_EQ(kept.size(), 1000u);
  EXPECT_EQ(kept.front(), "LIST 0");
  EXPECT_EQ(kept.back(), "LIST 999");
  // Each line is one write at the end; the file is cut back only past 2000 lines.
  std::string text = Read(path);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1002);
  for (int i = 1000; i < 1999; ++i) again.Append("LIST " + std::to_string(i));
  text = Read(path);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1000);
  EXPECT_EQ(HistoryFile(path).Load().front(), "LIST 999");
}

// Two sessions typing at once: neither loses a line of the other, cut-backs
// included, and temporaries that killed rewrites left are removed.
TEST_F(History, TwoSessionsKeepEachOthersLines) {
  std::string path = Path("history");
  std::ofstream(Path("history.99999999~")) << "left by a rewrite of old";
  std::ofstream(Path(".history.abcdef~")) << "left by a killed rewrite";
  std::ofstream(Path(".history.ghijkl~")) << "being made right now";
  fs::last_write_time(Path(".history.abcdef~"),
                      fs::file_time_type::clock::now() - std::chrono::hours(1));
  constexpr int kLines = 2500;
  pid_t children[2];
  for (int i = 0; i < 2; ++i) {
    children[i] = fork();
    ASSERT_GE(children[i], 0);
    if (children[i] == 0) {
      HistoryFile file(path);
      file.Load();
      for (int n = 0; n < kLines; ++n) file.Append(std::string(1, "AB"[i]) + std::to_string(n));
      _exit(0);
    }
  }
  for (pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
  }
  // Each session's lines in the file are its newest ones, without a gap. A
  // session that ran ahead of the other may have been cut back out entirely:
  // then the other's lines fill the history.
  std::string text = Read(path);
  for (char session : {'A', 'B'}) {
    std::vector<int> numbers;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
      if (line[0] == session) numbers.push_back(std::stoi(line.substr(1)));
    if (numbers.empty()) {
      EXPECT_GE(static_cast<size_t>(std::count(text.begin(), text.end(), '\n')),
                LineHistory::kMaxLines)
          << session;
      continue;
    }
    EXPECT_EQ(numbers.back(), kLines - 1) << session;
    for (size_t i = 1; i < numbers.size(); ++i)
      ASSERT_EQ(numbers[i], numbers[i - 1] + 1)
          << session << " lost a line after " << numbers[i - 1];
  }
  EXPECT_FALSE(fs::exists(Path("history.99999999~")));
  EXPECT_FALSE(fs::exists(Path(".history.abcdef~")));
  EXPECT_TRUE(fs::exists(Path(".history.ghijkl~")));  // too young to be known as left
}

TEST_F(History, OverlongFileIsCutAtTheNextLine) {
  std::string path = Path("history");
  std::string big;
  for (int i = 0; i < 3000; ++i)
    big += "PRINT " + std::string(1000, 'x') + std::to_string(i) + "\n";
  std::ofstream(path, std::ios::binary) << big;
  HistoryFile file(path);
  std::vector<std::string> lines = file.Load();
  ASSERT_EQ(lines.size(), 1000u);
  EXPECT_EQ(lines.back(), "PRINT " + std::string(1000, 'x') + "2999");
  file.Append("BYE");
  lines = HistoryFile(path).Load();
  ASSERT_EQ(lines.size(), 1000u);
  EXPECT_EQ(lines.back(), "BYE");
  EXPECT_LT(fs::file_size(path), 1100000u);
}

TEST_F(History, UnusableFilesAreLeftAlone) {
  HistoryFile none("");
  none.Append("RUN");
  EXPECT_TRUE(none.Load().empty());
  // A folder where the file should be, and a path under a file: nothing is written.
  fs::create_directories(Path("dir"));
  HistoryFile folder(Path("dir"));
  folder.Append("RUN");
  EXPECT_TRUE(folder.Load().empty());
  std::ofstream(Path("plain")) << "x";
  HistoryFile under(Path("plain/history"));
  under.Append("RUN");
  EXPECT_EQ(Read(Path("plain")), "x");
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  HistoryFile fifo(Path("fifo"));
  EXPECT_TRUE(fifo.Load().empty());  // returns at once: no writer is waited for
  fifo.Append("RUN");
}

TEST(HistoryLines, Rules) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(HistoryLines("a\r\n\nb\nc", false, 10), (Lines{"a", "b", "c"}));
  EXPECT_EQ(HistoryLines("tail\nb\n", true, 10), (Lines{"b"}));
  EXPECT_EQ(HistoryLines("1\n2\n3\n", false, 2), (Lines{"2", "3"}));
  EXPECT_EQ(HistoryLines(std::string(5000, 'y'), false, 2).front().size(), 2047u);
  EXPECT_TRUE(HistoryLines("", false, 5).empty());
  EXPECT_TRUE(HistoryLines("a\nb\n", false, 0).empty());
}

}  // namespace
