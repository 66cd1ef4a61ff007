// Program files: the byte rules, renumbering on load, SAVE, and files that
// are large or not BASIC at all. Files are made here, in a scratch folder.
#include "program/loader.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <tuple>

using namespace std::string_literals;

#include "console/console.h"
#include "files/data_file.h"
#include "program/program.h"
#include "program/run.h"
#include "shell/shell.h"
#include "stmt/simple_stmts.h"

namespace {

namespace fs = std::filesystem;

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

class Loader : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("basic_loader_" + std::to_string(getpid()));
    fs::create_directories(dir_);
    old_ = InstallConsole(MakeStringConsole(&out_, ""));
  }
  void TearDown() override {
    InstallConsole(std::move(old_));
    fs::remove_all(dir_);
    SetParseError(0);
    ClearError();
  }
  // What the console printed so far.
  const std::string& Out() {
    TheConsole().Flush();
    return out_;
  }
  std::string Write(const std::string& name, const std::string& bytes) {
    std::string path = (dir_ / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  std::unique_ptr<Program> Load(const std::string& path) {
    SourceFile file;
    EXPECT_TRUE(file.Open(path.c_str()));
    return LoadProgram(file, path, true);
  }
  static std::string Listing(const Program& prog) {
    std::string text;
    int depth = 0;
    for (const Statement* s = prog.First(); s; s = s->Next())
      if (!s->Hidden()) {
        depth = prog.ListLine(text, s, 3, depth, true);
        text += '\n';
      }
    return text;
  }
  static double Since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }

  fs::path dir_;
  std::string out_;
  std::unique_ptr<Console> old_;
};

TEST_F(Loader, ByteRules) {
  SourceFile file;
  ASSERT_TRUE(file.Open(Write("bytes", "\tA\r\nab\tc\0d\nlast\x1Atail\nnever"s).c_str()));
  std::string line;
  ASSERT_TRUE(file.GetLine(line));
  EXPECT_EQ(line, "    A");
  ASSERT_TRUE(file.GetLine(line));
  EXPECT_EQ(line, "ab  cd");
  ASSERT_TRUE(file.GetLine(line));  // Ctrl-Z ends the file; the open line counts
  EXPECT_EQ(line, "last");
  EXPECT_EQ(file.LineCount(), 3u);
  EXPECT_FALSE(file.GetLine(line));
}

TEST_F(Loader, BadLinesAreReportedByFileLineAndKept) {
  auto prog = Load(Write("bad.bas", "10 REM ok\n0 REM zero\n20 STOP X\n\n30 END\n"));
  EXPECT_EQ(Out(),
            "Missing or Invalid Statement Number in file line 2\n"
            "Characters after statement end in file line 3\n");
  EXPECT_EQ(g_err.parse, 0u);
  EXPECT_EQ(prog->BadLines(), 2);
  prog->NumberUnnumbered();
  EXPECT_EQ(Listing(*prog),
            "   10   REM ok\n   15   ?0 REM zero\n   20   ?STOP X\n   25 \n   30   END\n");
}

TEST_F(Loader, RenumberingMovesCollidingLinesAndTheirReferences) {
  std::string text = "10 REM start\n";
  for (int i = 0; i < 20; ++i) text += "REM r\n";
  text += "20 DATA 1\n215 RESTORE 220\n220 RESTORE 215\n300 RESTORE 20\n";
  auto prog = Load(Write("twenty.bas", text));
  EXPECT_TRUE(prog->NumberUnnumbered());
  std::string listing = Listing(*prog);
  EXPECT_NE(listing.find("  210   REM r\n  220   DATA 1\n  230   RESTORE 240\n"
                         "  240   RESTORE 230\n  300   RESTORE 220\n"),
            std::string::npos)
      << listing;
  ASSERT_EQ(Link(*prog), 0u);
}

TEST_F(Loader, OverlongLineKeepsItsNumberAndText) {
  std::string text = "20 REM " + std::string(5000, 'y');
  auto prog = Load(Write("long.bas", "10 REM\n" + text + "\n30 END\n"));
  EXPECT_EQ(Out(), "Line too long in file line 2\n");
  const Statement* s = prog->Find(20);
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(s->ParseError(), 6u);
  std::string listed;
  s->List(listed);
  EXPECT_EQ(listed, "?" + text.substr(3));
}

TEST_F(Loader, SaveReplacesTheFileOnlyWhenComplete) {
  auto prog = Load(Write("in.bas", "10 FOR I=1 TO 2\n20 PRINT I\n30 NEXT I\n40 GOTO 20\n"));
  std::string path = (dir_ / "out.bas").string();
  Write("out.bas", "old");
  ASSERT_EQ(SaveProgram(*prog, path, false), SaveResult::kSaved);
  std::ifstream in(path);
  std::string saved((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(saved, "\tFOR I=1 TO 2\n   20 \tPRINT I\n\tNEXT I\n\tGOTO 20\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()),
            2);  // no temporary
  EXPECT_NE(SaveProgram(*prog, (dir_ / "none" / "x.bas").string(), true), SaveResult::kSaved);
  EXPECT_NE(Out().find("Cannot open "), std::string::npos);
}

// A script's "#!" first line is no statement, keeps the file's line numbers, and
// survives a SAVE; anywhere else "#!" is a bad line.
TEST_F(Loader, InterpreterLineIsSkippedAndSavedBack) {
  auto prog = Load(Write("s.bas", "#!/usr/bin/env basic\nPRINT 1\nSTOP X\n#!x\n"));
  EXPECT_EQ(Out(),
            "Characters after statement end in file line 3\n"
            "Invalid Basic Stmt in file line 4\n");
  EXPECT_EQ(prog->interpreterLine, "#!/usr/bin/env basic");
  EXPECT_EQ(prog->BadLines(), 2);
  std::string path = (dir_ / "out.bas").string();
  ASSERT_EQ(SaveProgram(*prog, path, false), SaveResult::kSaved);
  std::ifstream in(path);
  std::string saved((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(saved, "#!/usr/bin/env basic\n\tPRINT 1\n\tSTOP X\n\t#!x\n");  // bad lines as typed
}

// Numbers that renumbering would not give back survive a plain SAVE and GET.
TEST_F(Loader, PlainSaveKeepsTheStatementNumbers) {
  auto prog = Load(Write("in.bas", "100 PRINT 1\n250 IF 1 THEN\n1000 ENDIF\n"));
  std::string path = (dir_ / "numbered.bas").string();
  ASSERT_EQ(SaveProgram(*prog, path, true), SaveResult::kSaved);
  std::ifstream in(path);
  std::string saved((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(saved, "  100 PRINT 1\n  250 IF 1 THEN\n 1000 ENDIF\n");
  auto back = Load(path);
  EXPECT_FALSE(back->NumberUnnumbered());
  EXPECT_EQ(Listing(*back), "  100   PRINT 1\n  250   IF 1 THEN\n 1000   ENDIF\n");
}

// A save that cannot be written leaves the file that was there as it was, and
// no temporary beside it: here the file size limit stops the writing, and its
// signal, which would end the process, is ignored as the shell ignores it.
TEST_F(Loader, FailedSaveKeepsTheOldFile) {
  auto prog = Load(Write("in.bas", "10 PRINT \"A LINE LONGER THAN THE LIMIT\"\n"));
  std::string path = Write("kept.bas", "10 REM precious\n");
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    signal(SIGXFSZ, SIG_IGN);
    struct rlimit limit = {16, 16};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(2);
    bool told = SaveProgram(*prog, path, true) == SaveResult::kWrite &&
                Out().find("Cannot write " + path + ": File too large.") != std::string::npos;
    _exit(told ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(ReadFile(path), "10 REM precious\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()), 2);
}

// A listing never replaces a data file, as PURGE never removes a program.
TEST_F(Loader, SaveLeavesADataFile) {
  auto prog = Load(Write("in.bas", "10 PRINT 1\n"));
  std::string path = (dir_ / "scores.dat").string();
  ASSERT_EQ(DataFile::Create(path, 1, 8), CreateStatus::kCreated);
  std::string before = ReadFile(path);
  EXPECT_EQ(SaveProgram(*prog, path, true), SaveResult::kDataFile);
  EXPECT_EQ(Out(), path + " is a data file: a program is not saved over it.\n");
  EXPECT_EQ(ReadFile(path), before);
}

// Two sessions saving one name at once: each save is told the truth, and the
// file is always one whole program, never empty or a mixture.
TEST_F(Loader, TwoSessionsSaveOneName) {
  std::string path = (dir_ / "shared.bas").string();
  std::string texts[2] = {"   10 PRINT \"FIRST\"\n", "   10 REM " + std::string(5000, 's') + "\n"};
  pid_t children[2];
  for (int i = 0; i < 2; ++i) {
    auto prog = Load(Write("in" + std::to_string(i) + ".bas", texts[i]));
    children[i] = fork();
    ASSERT_GE(children[i], 0);
    if (children[i] == 0) {
      for (int round = 0; round < 300; ++round)
        if (SaveProgram(*prog, path, true) != SaveResult::kSaved) _exit(1);
      _exit(0);
    }
  }
  int torn = 0;
  for (int read = 0; read < 2000; ++read) {
    std::ifstream in(path, std::ios::binary);
    std::string now((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.is_open() && now != texts[0] && now != texts[1]) ++torn;  // none before the first save
  }
  for (pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  EXPECT_EQ(torn, 0);
  std::string last = ReadFile(path);
  EXPECT_TRUE(last == texts[0] || last == texts[1]);
}

// Some editors begin a file with a UTF-8 byte-order mark: it is no text.
TEST_F(Loader, AByteOrderMarkIsSkipped) {
  auto prog = Load(Write("bom.bas",
                         "\xEF\xBB\xBF"
                         "#!/usr/bin/env basic\n10 PRINT 1\n"));
  EXPECT_EQ(Out(), "");
  EXPECT_EQ(prog->interpreterLine, "#!/usr/bin/env basic");
  EXPECT_EQ(Listing(*prog), "   10   PRINT 1\n");
  // Only at the start of the file, and only whole.
  Load(Write("mid.bas",
             "10 PRINT 1\n\xEF\xBB\xBF"
             "20 PRINT 2\n"));
  EXPECT_EQ(Out(), "Invalid Basic Stmt in file line 2\n");
}

TEST_F(Loader, RandomBytesLoadWithoutHarm) {
  std::mt19937 random(7);
  for (int round = 0; round < 20; ++round) {
    std::string bytes(20000, '\0');
    for (char& c : bytes) c = static_cast<char>(random() % 256 == 26 ? 'x' : random());
    auto prog = Load(Write("random.bas", bytes));
    prog->NumberUnnumbered();
    Link(*prog);
    std::string text = Listing(*prog);
    out_.clear();
  }
}

TEST_F(Loader, LargeFilesLoadQuickly) {
  std::string numbered, unnumbered, wide;
  for (int i = 1; i <= 100000; ++i) {
    numbered += std::to_string(i * 5) + " REM line\n";
    unnumbered += "REM line\n";
  }
  numbered += "999999 END\n";
  for (int i = 0; i < 100000; ++i) wide += "REM " + std::string(96, 'w') + "\n";  // 10 MB
  auto start = std::chrono::steady_clock::now();
  auto prog = Load(Write("numbered.bas", numbered));
  EXPECT_EQ(prog->Find(500000)->Number(), 500000u);
  EXPECT_EQ(prog->Find(999999)->Next(), prog->EndMark());
  EXPECT_EQ(Out(), "");
  prog = Load(Write("unnumbered.bas", unnumbered));
  prog->NumberUnnumbered();
  EXPECT_NE(prog->Find(500000), nullptr);  // 999998 / 100000 lines: step 5
  EXPECT_EQ(Link(*prog), 0u);
  EXPECT_EQ(::Run(*prog, true), 0u);
  prog = Load(Write("wide.bas", wide));
  EXPECT_EQ(prog->BadLines(), 0);
  EXPECT_LT(Since(start), 20.0);
}

// The shell fed with NUL bytes, escapes, control characters and long lines.
TEST_F(Loader, ShellSurvivesGarbageInput) {
  std::mt19937 random(3);
  const char pool[] = "\0\x1b[;1m0H\r\b\x7f\t \"A10:!\xff\x80";
  std::string input;
  for (int line = 0; line < 2000; ++line) {
    int length = static_cast<int>(random() % 80);
    for (int i = 0; i < length; ++i) input += pool[random() % (sizeof pool - 1)];
    input += '\n';
  }
  input += "10 REM " + std::string(5000, 'z') + "\nLIST\nRUN\n";
  InstallConsole(MakeStringConsole(&out_, input));
  EXPECT_EQ(RunShell(), 0);
  EXPECT_NE(Out().find("   10   REM zzz"), std::string::npos);
  EXPECT_EQ(Out().substr(out_.size() - 31), "\n0000 MINUTES OF TERMINAL TIME\n");
}

TEST_F(Loader, DumpAndLenFormats) {
  InstallConsole(MakeStringConsole(&out_, "10 REM hi\n20 L: STOP\nRUN\nDUMP\nLEN\n"));
  RunShell();
  Program scratch;
  scratch.StartLine("STOP");
  size_t stop = scratch.ParseLine().front()->Size();
  size_t rem = RemStmt("hi").Size(), label = LabelStmt("L", true).Size();
  size_t mark = EndMarkStmt().Size();
  char expected[300];
  std::snprintf(expected, sizeof expected,
                "DUMP\n  10 [%3zu]02 RNS<20  > REM hi\n  20 [%3zu]12 RNS<20  > L:\n"
                "  20 [%3zu]0e CES<0  > STOP\n   0 [%3zu]04 RES<<nullptr>> ENDMARK\nLEN\n",
                rem, label, stop, mark);
  EXPECT_NE(Out().find(expected), std::string::npos) << out_;
  size_t total = 0, program = 0, tables = 0, heaps = 1;
  ASSERT_EQ(std::sscanf(out_.c_str() + out_.find("\nLEN\n") + 5,
                        "%zu BYTES IN PROGRAM (class Program=%zu; tables=%zu; heaps=%zu)\n", &total,
                        &program, &tables, &heaps),
            4);
  EXPECT_EQ(program, sizeof(Program));
  EXPECT_EQ(heaps, 0u);
  EXPECT_EQ(total, program + rem + label + stop + mark + tables);
}

TEST_F(Loader, MissingFileFromTheCommandLine) {
  EXPECT_EQ(RunFile((dir_ / "none.bas").string().c_str(), false), -1);
  EXPECT_EQ(out_.rfind("\nVelo Basic V0.94.0.154 ", 0), 0u);
  EXPECT_NE(Out().find("\n\nUnable to open " + (dir_ / "none.bas").string() + ".\n"),
            std::string::npos);
}

}  // namespace

namespace {

// A bad line is saved as typed: each SAVE and GET gives back the same file.
TEST_F(Loader, BadLinesSurviveSaveAndGet) {
  auto prog = Load(Write("bad.bas", "10 REM a\n20 STOP X\nREM c\n"));
  prog->NumberUnnumbered();
  std::string first = (dir_ / "first.bas").string(), second = (dir_ / "second.bas").string();
  ASSERT_EQ(SaveProgram(*prog, first, true), SaveResult::kSaved);
  EXPECT_EQ(ReadFile(first), "   10 REM a\n   20 STOP X\n   30 REM c\n");
  prog = Load(first);
  ASSERT_EQ(SaveProgram(*prog, second, true), SaveResult::kSaved);
  EXPECT_EQ(ReadFile(second), ReadFile(first));
  EXPECT_EQ(Listing(*prog), "   10   REM a\n   20   ?STOP X\n   30   REM c\n");
}

// Memory stays bounded: an endless line or file stops the load with a message,
// keeping the lines before it.
TEST_F(Loader, EndlessLinesAndFilesStopTheLoad) {
  auto prog = Load(Write("wide.bas", "10 REM\n20 REM " + std::string(70000, 'w') + "\n30 END\n"));
  EXPECT_EQ(Out(), "Line too long in file line 2\nUnable to load program.\n");
  EXPECT_EQ(g_err.parse, 6u);
  EXPECT_NE(prog->Find(10), nullptr);
  EXPECT_EQ(prog->Find(20), nullptr);
  out_.clear();
  std::string huge;
  for (int i = 0; i < 300000; ++i) huge += "REM " + std::string(56, 'h') + "\n";  // 18 MB
  prog = Load(Write("huge.bas", huge));
  EXPECT_EQ(Out(), "Not enough memory in file line 275037\nUnable to load program.\n");
  EXPECT_EQ(g_err.parse, 3u);
  SourceFile lines;
  ASSERT_TRUE(lines.Open(Write("lines.bas", std::string(SourceFile::kMaxLines + 5, '\n')).c_str()));
  std::string line;
  while (lines.GetLine(line)) {
  }
  EXPECT_EQ(lines.LineCount(), SourceFile::kMaxLines);
  EXPECT_EQ(lines.Limit(), 3u);
}

// GET never waits: a FIFO without a writer, a folder and a device are refused
// at once. The command line takes pipes and devices but no folder.
TEST_F(Loader, GetOpensRegularFilesOnly) {
  std::string fifo = (dir_ / "fifo").string();
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  SourceFile file;
  EXPECT_FALSE(file.Open(fifo.c_str()));
  EXPECT_FALSE(file.Open(dir_.c_str()));
  EXPECT_FALSE(file.Open("/dev/zero"));
  EXPECT_FALSE(file.Open(dir_.c_str(), SourceFile::Kind::kAny));
  SourceFile zeros;
  ASSERT_TRUE(zeros.Open("/dev/zero", SourceFile::Kind::kAny));
  auto prog = LoadProgram(zeros, "/dev/zero", true);  // skipped NUL bytes count in a line
  EXPECT_EQ(Out(), "Line too long in file line 1\nUnable to load program.\n");
  // A read that fails ends the file with a whole line of report.
  out_.clear();
  SourceFile mem;
  ASSERT_TRUE(mem.Open("/proc/self/mem"));
  std::string line;
  EXPECT_FALSE(mem.GetLine(line));
  EXPECT_EQ(Out(), "File read error in line 0\n");
}

TEST_F(Loader, CommandLineRunsFromAPipe) {
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  std::string text = "10 PRINT \"PIPED\"\n";
  ASSERT_EQ(write(fds[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  close(fds[1]);
  EXPECT_EQ(RunFile(("/dev/fd/" + std::to_string(fds[0])).c_str(), false), 0);
  close(fds[0]);
  EXPECT_EQ(Out(), "PIPED\n");
}

// SAVE replaces regular files only: a link's target is replaced and the link
// stays; a FIFO or folder is refused; a device is written in place; the new
// file keeps the old one's permission bits.
TEST_F(Loader, SaveTargets) {
  auto prog = Load(Write("in.bas", "10 PRINT 1\n"));
  std::string real = Write("real.bas", "old"), link = (dir_ / "link.bas").string();
  ASSERT_EQ(chmod(real.c_str(), 0640), 0);
  ASSERT_EQ(symlink("real.bas", link.c_str()), 0);
  ASSERT_EQ(SaveProgram(*prog, link, true), SaveResult::kSaved);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(ReadFile(real), "   10 PRINT 1\n");
  EXPECT_EQ(fs::status(real).permissions(), fs::perms(0640));
  std::string fifo = (dir_ / "fifo").string();
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_NE(SaveProgram(*prog, fifo, true), SaveResult::kSaved);
  EXPECT_TRUE(fs::is_fifo(fifo));
  EXPECT_NE(SaveProgram(*prog, dir_.string(), true), SaveResult::kSaved);
  EXPECT_EQ(SaveProgram(*prog, "/dev/null", true), SaveResult::kSaved);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_NE(SaveProgram(*prog, "/dev/full", true), SaveResult::kSaved);
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
  EXPECT_EQ(Out(), "Cannot open " + fifo + " for output.\nCannot open " + dir_.string() +
                       " for output.\nCannot write /dev/full: No space left on device.\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()),
            4);  // no temporary
}

// A file its user may not write is not replaced: root is checked as another user.
TEST_F(Loader, SaveKeepsAReadOnlyFile) {
  std::string path = Write("ro.bas", "10 REM keep\n");
  ASSERT_EQ(chmod(path.c_str(), 0444), 0);
  ASSERT_EQ(chmod(dir_.c_str(), 0777), 0);
  auto prog = Load(Write("in.bas", "10 PRINT 1\n"));
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (geteuid() == 0 && setresuid(65534, 65534, 65534) != 0) _exit(2);
    _exit(SaveProgram(*prog, path, true) != SaveResult::kSaved ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(ReadFile(path), "10 REM keep\n");
}

// Unnumbered lines after the last numbers take the numbers below 999999; only
// as many lines before them move down as needed, their references with them.
TEST_F(Loader, NumbersStayBelowTheLimit) {
  auto prog = Load(Write("top.bas", "999990 GOTO 999998\n999998 PRINT 1\nREM a\nREM b\n"));
  EXPECT_TRUE(prog->NumberUnnumbered());
  EXPECT_EQ(Listing(*prog),
            "999990   GOTO 999997\n999997   PRINT 1\n999998   REM a\n999999   REM b\n");
  EXPECT_EQ(Link(*prog), 0u);
}

}  // namespace

namespace {

// DUMP and LEN show what each statement holds: every part of a statement counts,
// so a longer expression in any place makes the statement larger by its growth.
TEST(StatementSize, EveryPartCounts) {
  const std::string text = "\"" + std::string(200, 'x') + "\"";
  std::string sum = "1";
  for (int i = 0; i < 50; ++i) sum += "+1";
  // {s} stands for a string, {n} for a number.
  const char* forms[] = {
      "CREATE R,{s},4",
      "CREATE R,\"F\",{n}",
      "CREATE R,\"F\",4,{n}",
      "ASSIGN {s},1,R",
      "PURGE R,{s}",
      "PRINT {s}",
      "PRINT {n};1",
      "A={n}",
      "A$={s}",
      "IF {n} THEN 10",
      "FOR I={n} TO 2",
      "FOR I=1 TO 2 STEP {n}",
      "WHILE {n}",
      "UNTIL {n}",
      "ON {n} GOTO 10,20",
      "SLEEP {n}",
      "PRINT USING {s};1",
      "PRINT USING \"D\";{n}",
      "INPUT {s},A",
      "CHAIN {s}",
      "PRINT TAB({n});1",
      "SELECT {n}",
      "CASE {n}",
      "WINDOW @1;{n},2",
      "MOVETO @1;{n},2",
      "LINETO @1;1,{n}",
      "COLOR @1;{n}",
      "READ #1,{n};A",
      "PRINT #1,{n};A",
      "PRINT #1;{s}",
      "CONVERT {n} TO A$",
      "A(1)={n}",
      "A({n})=1",
      "A,B={n}",
      "A$,B$={s}",
      "CREATE R({n}),\"F\",4",
      "ASSIGN \"F\",1,R({n})",
      "PURGE R({n}),\"F\"",
      "DEF FNA(X)={n}",
  };
  for (const char* form : forms) {
    std::string small = form, large = form;
    for (auto [mark, little, big] : {std::tuple{"{s}", "\"A\"", text}, {"{n}", "1", sum}}) {
      if (size_t at = small.find(mark); at != std::string::npos) {
        small.replace(at, 3, little);
        large.replace(large.find(mark), 3, big);
      }
    }
    Program a, b;
    a.StartLine(small.c_str());
    b.StartLine(large.c_str());
    std::vector<StatementPtr> sa = a.ParseLine(), sb = b.ParseLine();
    ASSERT_TRUE(!sa.empty() && !sb.empty()) << small;
    // Unsigned: a part subtracted instead of added wraps round to a huge size.
    size_t growth = sb.front()->Size() - sa.front()->Size();
    EXPECT_GE(growth, 99u) << large;  // at least the text that was added
    EXPECT_LT(growth, 4000u) << large;
  }
  // A bound more in a DIM: a few bytes more, never fewer.
  Program one, two;
  one.StartLine("DIM A(5)");
  two.StartLine("DIM A(5,5)");
  std::vector<StatementPtr> a = one.ParseLine(), b = two.ParseLine();
  ASSERT_TRUE(!a.empty() && !b.empty());
  EXPECT_GT(b.front()->Size(), a.front()->Size());
  EXPECT_LT(b.front()->Size() - a.front()->Size(), 64u);
}

}  // namespace
