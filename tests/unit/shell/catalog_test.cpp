// CATALOG: which files it lists and how it names their kinds, in the current
// folder and in the libraries that BASIC_LIB and BASIC_GROUP name.
#include "shell/catalog.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "console/console.h"
#include "files/data_file.h"
#include "program_fixture.h"

namespace {
using stmt_test::ConsoleCapture;
using stmt_test::ScratchFolder;

void Write(const char* path, const std::string& bytes) {
  FILE* f = fopen(path, "wb");
  ASSERT_NE(f, nullptr);
  fwrite(bytes.data(), 1, bytes.size(), f);
  fclose(f);
  utimbuf times{981173106, 981173106};  // 2001-02-03 04:05:06 UTC
  utime(path, &times);
}

class Catalog : public ScratchFolder {
 protected:
  void SetUp() override {
    ScratchFolder::SetUp();
    const char* tz = std::getenv("TZ");
    oldTz_ = tz ? tz : "";
    hadTz_ = tz != nullptr;
    setenv("TZ", "UTC", 1);
    tzset();
  }
  void TearDown() override {
    if (hadTz_)
      setenv("TZ", oldTz_.c_str(), 1);
    else
      unsetenv("TZ");
    tzset();
    unsetenv("BASIC_LIB");
    unsetenv("BASIC_GROUP");
    ScratchFolder::TearDown();
  }
  std::string Listing(const std::string& folder) {
    ConsoleCapture capture;
    ::Catalog(TheConsole(), folder);
    return capture.Text();
  }

 private:
  std::string oldTz_;
  bool hadTz_ = false;
};

TEST_F(Catalog, KindsSizesAndDatesSortedByName) {
  Write("Zeta.BAS", "PRINT\n");
  Write("alpha", "10 REM NUMBERED\n");
  Write("run-me", "#!/usr/bin/env basic\nPRINT 1\n");
  Write("notes", "plain words\n");
  Write("empty.txt", "");
  Write("blob", std::string("\x7f"
                            "ELF\0\0",
                            6));
  Write(".hidden.bas", "10 END\n");
  mkdir("folder.bas", 0755);
  ASSERT_EQ(DataFile::Create("data.dat", 3, 4), CreateStatus::kCreated);
  utimbuf times{981173106, 981173106};
  utime("data.dat", &times);
  Write("short.dat", std::string("\x89"
                                 "BDF\r\n\x1a\n\1\0\4\0\3\0\0\0",
                                 16));
  EXPECT_EQ(Listing("."),
            "Name       Kind                             Bytes  Date\n"
            "alpha      program                             16  2001-02-03 04:05\n"
            "data.dat   data file, 3 records of 4 words     59  2001-02-03 04:05\n"
            "empty.txt  text file                            0  2001-02-03 04:05\n"
            "notes      text file                           12  2001-02-03 04:05\n"
            "run-me     program                             29  2001-02-03 04:05\n"
            "short.dat  data file, damaged                  16  2001-02-03 04:05\n"
            "Zeta.BAS   program                              6  2001-02-03 04:05\n");
}

TEST_F(Catalog, LibrariesComeFromTheEnvironmentOrTheCurrentFolder) {
  EXPECT_EQ(CatalogFolder(""), ".");
  EXPECT_EQ(CatalogFolder("$"), ".");
  setenv("BASIC_LIB", "/usr/lib/basic", 1);
  setenv("BASIC_GROUP", "", 1);
  EXPECT_EQ(CatalogFolder("$"), "/usr/lib/basic");
  EXPECT_EQ(CatalogFolder("*"), ".");
  mkdir("empty", 0755);
  EXPECT_EQ(Listing("empty"), "No files.\n");
  EXPECT_EQ(Listing("missing"), "Unable to open missing.\n");
}

}  // namespace
