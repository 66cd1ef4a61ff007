// The one place where names become host files: links followed to the file they
// name, and temporaries of their own.
#include "platform/host_files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

class HostFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("basic_host_" + std::to_string(getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "a");
    fs::create_directories(dir_ / "c");
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  static size_t Entries(const fs::path& dir) {
    return static_cast<size_t>(std::distance(fs::directory_iterator(dir), {}));
  }

  fs::path dir_;
};

TEST_F(HostFiles, NamesBecomePlaces) {
  std::string path;
  EXPECT_EQ(host::HostPath(std::string("x\0y", 3), &path), EINVAL);
  EXPECT_EQ(host::HostPath("x y", &path), 0);
  EXPECT_EQ(path, "x y");
  // Links of the last component are followed, relative ones from their own folder.
  std::ofstream(Path("c/real.txt")) << "real";
  fs::create_symlink("../c/real.txt", Path("a/link.txt"));
  fs::create_symlink(Path("a/link.txt"), Path("a/chain.txt"));
  host::Place place;
  ASSERT_EQ(place.Resolve(Path("a/chain.txt")), 0);
  EXPECT_EQ(place.Name(), "real.txt");
  struct stat st, real;
  ASSERT_EQ(place.Stat(&st), 0);
  ASSERT_EQ(stat(Path("c/real.txt").c_str(), &real), 0);
  EXPECT_EQ(st.st_ino, real.st_ino);
  // A link to nothing yet names the file it would make; a loop is refused.
  fs::create_symlink("../c/new.txt", Path("a/dangling.txt"));
  ASSERT_EQ(place.Resolve(Path("a/dangling.txt")), 0);
  EXPECT_EQ(place.Name(), "new.txt");
  EXPECT_EQ(place.Stat(&st), ENOENT);
  fs::create_symlink("loop2", Path("a/loop1"));
  fs::create_symlink("loop1", Path("a/loop2"));
  EXPECT_EQ(place.Resolve(Path("a/loop1")), ELOOP);
  EXPECT_EQ(place.Resolve(Path("none/x")), ENOENT);
  EXPECT_EQ(place.Resolve(""), ENOENT);
  // A folder names itself; opening it as a file is then the caller's refusal.
  ASSERT_EQ(place.Resolve(Path("a/")), 0);
  EXPECT_EQ(place.Name(), "a");
  ASSERT_EQ(place.Resolve("/"), 0);
  EXPECT_EQ(place.Name(), ".");
}

TEST_F(HostFiles, TemporariesAreTheirOwn) {
  host::Place place;
  ASSERT_EQ(place.Resolve(Path("a/target")), 0);
  {
    host::TempFile temp(place);
    ASSERT_EQ(temp.Create(0600), 0);
    ASSERT_EQ(write(temp.Descriptor(), "new", 3), 3);
    EXPECT_EQ(temp.LinkAsTarget(), 0);
  }
  EXPECT_EQ(Entries(dir_ / "a"), 1u);
  {
    host::TempFile temp(place);
    ASSERT_EQ(temp.Create(0600), 0);
    EXPECT_EQ(temp.LinkAsTarget(), EEXIST);  // a present file is never replaced so
  }
  EXPECT_EQ(Entries(dir_ / "a"), 1u);  // the temporary went
  {
    host::TempFile temp(place);
    ASSERT_EQ(temp.Create(0600), 0);
    ASSERT_EQ(write(temp.Descriptor(), "newer", 5), 5);
    EXPECT_EQ(temp.ReplaceTarget(), 0);
  }
  EXPECT_EQ(fs::file_size(Path("a/target")), 5u);
  EXPECT_EQ(Entries(dir_ / "a"), 1u);
}

// The library prefixes map to their folders, or to the working folder when unset.
TEST_F(HostFiles, LibraryPrefixes) {
  std::string path, note;
  unsetenv("BASIC_LIB");
  setenv("BASIC_GROUP", "", 1);
  EXPECT_EQ(host::HostPath("$LIB", &path), 0);
  EXPECT_EQ(path, "LIB");
  EXPECT_EQ(host::HostPath("*ZZ", &path), 0);
  EXPECT_EQ(path, "ZZ");
  setenv("BASIC_LIB", Path("a").c_str(), 1);
  setenv("BASIC_GROUP", (Path("c") + "/").c_str(), 1);
  EXPECT_EQ(host::HostPath("$LIB", &path, &note), 0);
  EXPECT_EQ(path, Path("a/LIB"));
  EXPECT_EQ(host::HostPath("*sub/ZZ", &path), 0);
  EXPECT_EQ(path, Path("c/sub/ZZ"));
  EXPECT_EQ(host::HostPath("x$*", &path), 0);  // only a leading one is a prefix
  EXPECT_EQ(path, "x$*");
  // A library folder that is not there is named.
  setenv("BASIC_GROUP", Path("none").c_str(), 1);
  EXPECT_EQ(host::HostPath("*ZZ", &path, &note), ENOENT);
  EXPECT_EQ(note, "group library " + Path("none") + " not found");
  EXPECT_EQ(host::FindFile("*ZZ", host::FileKind::kData, &path, &note), ENOENT);
  EXPECT_EQ(host::HostPath("$LIB", &path, &note), 0);
  EXPECT_EQ(note, "");
  unsetenv("BASIC_LIB");
  unsetenv("BASIC_GROUP");
}

// An existing file: its name, then with .bas for a program, then ignoring case.
TEST_F(HostFiles, NamesAreFoundAsOldListingsExpect) {
  auto find = [](const std::string& name, host::FileKind kind, std::string* note = nullptr) {
    std::string path;
    int error = host::FindFile(name, kind, &path, note);
    return error ? "error " + std::to_string(error) : path;
  };
  const auto data = host::FileKind::kData, program = host::FileKind::kProgram;
  std::ofstream(Path("a/adread.bas")) << "10 END\n";
  std::ofstream(Path("a/SCORES")) << "";
  std::ofstream(Path("a/trek")) << "";
  std::ofstream(Path("a/TREK.bas")) << "";
  fs::create_directories(dir_ / "a/Games");
  EXPECT_EQ(find(Path("a/ADREAD"), program), Path("a/adread.bas"));
  EXPECT_EQ(find(Path("a/ADREAD"), data), Path("a/ADREAD"));  // data files get no .bas
  EXPECT_EQ(find(Path("a/Adread.BAS"), data), Path("a/adread.bas"));
  EXPECT_EQ(find(Path("a/scores"), data), Path("a/SCORES"));
  // The exact name wins over .bas, and .bas over case.
  EXPECT_EQ(find(Path("a/trek"), program), Path("a/trek"));
  EXPECT_EQ(find(Path("a/TREK"), program), Path("a/TREK.bas"));
  // Two matches once case is ignored are named; folders never match.
  std::string note;
  EXPECT_EQ(find(Path("a/Trek"), program, &note), "error " + std::to_string(host::kAmbiguous));
  EXPECT_EQ(note, "both TREK.bas and trek match");
  EXPECT_EQ(find(Path("a/GAMES"), data), Path("a/GAMES"));
  EXPECT_EQ(find(Path("a/nothing"), program), Path("a/nothing"));
  EXPECT_EQ(find(Path("none/x"), data), Path("none/x"));
  EXPECT_EQ(find(std::string("x\0", 2), data), "error " + std::to_string(EINVAL));
}

}  // namespace

namespace {

// Reads and writes at an offset, or at the descriptor's position (-1), move every
// byte asked for, down to a single one.
TEST_F(HostFiles, EveryByteGoesAndComes) {
  std::string path = Path("bytes");
  int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(host::WriteAllAt(fd, "abcdef", 6, -1), 0);
  ASSERT_EQ(host::WriteAllAt(fd, "X", 1, 2), 0);
  ASSERT_EQ(host::WriteAllAt(fd, "Z", 1, -1), 0);
  char back[8] = {};
  ASSERT_EQ(host::ReadAllAt(fd, back, 7, 0), 0);
  EXPECT_STREQ(back, "abXdefZ");
  char one = 0;
  ASSERT_EQ(host::ReadAllAt(fd, &one, 1, 3), 0);
  EXPECT_EQ(one, 'd');
  EXPECT_NE(host::ReadAllAt(fd, back, 2, 6), 0);  // past the end: not all there
  close(fd);
}

}  // namespace
