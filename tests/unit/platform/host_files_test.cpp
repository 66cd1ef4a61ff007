// The one place where names become host files: links followed to the file they
// name, and temporaries of their own.
#include "platform/host_files.h"

#include <gtest/gtest.h>
#include <unistd.h>

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

}  // namespace
