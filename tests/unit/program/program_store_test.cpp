// The statement store: typed lines, deletion, listing and the link pass.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>

#include "console/console.h"
#include "program/program.h"
#include "program/run.h"

// Counts heap allocations while enabled, to show that the run loop makes none.
// malloc is interposed (operator new ends in it) where glibc allows that and no
// sanitizer owns the allocator.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
#define COUNTS_ALLOCATIONS 1
namespace {
std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};
}  // namespace
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* malloc(std::size_t size) {
  if (g_counting) g_allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_malloc(size);
}
#else
#define COUNTS_ALLOCATIONS 0
namespace {
std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};
}  // namespace
#endif

namespace {

// Stores one line as the shell does: number, parse, insert or delete.
void Type(Program& prog, const std::string& text) {
  SetParseError(0);
  prog.StartLine(text.c_str());
  EXPECT_EQ(prog.GetToken(), tok::kInteger) << text;
  auto number = static_cast<uint32_t>(std::strtoul(std::string(prog.Text()).c_str(), nullptr, 10));
  auto line = prog.ParseLine();
  if (g_err.parse == err::kEndOfLine) {
    prog.Delete(prog.Find(number));
  } else {
    line.front()->SetNumber(number);
    prog.InsertTyped(std::move(line));
  }
  SetParseError(0);
}

std::string Listing(const Program& prog, int width = 3, bool numbers = true) {
  std::string out;
  int depth = 0;
  for (const Statement* s = prog.First(); s; s = s->Next()) {
    if (s->Hidden()) continue;
    depth = prog.ListLine(out, s, width, depth, numbers);
    out += '\n';
  }
  return out;
}

TEST(ProgramStore, TypedLinesAreSortedReplacedAndDeleted) {
  Program prog;
  Type(prog, "30 REM c");
  Type(prog, "10 REM a");
  Type(prog, "20 L: REM b ! note");
  Type(prog, "5 STOP X");
  EXPECT_EQ(prog.BadLines(), 1);
  EXPECT_EQ(Listing(prog),
            "    5   ?STOP X\n   10   REM a\n   20 L: REM b ! note\n   30   REM c\n");
  // Replacing a line removes the statements that continued it.
  Type(prog, "20 REM B");
  Type(prog, "5 STOP");
  EXPECT_EQ(prog.BadLines(), 0);
  EXPECT_EQ(Listing(prog), "    5   STOP\n   10   REM a\n   20   REM B\n   30   REM c\n");
  Type(prog, "10");
  Type(prog, "11");  // no such line: nothing happens
  EXPECT_EQ(prog.Find(10), nullptr);
  ASSERT_NE(prog.Find(30), nullptr);
  EXPECT_EQ(prog.Find(30)->Next(), prog.EndMark());
  EXPECT_EQ(Listing(prog), "    5   STOP\n   20   REM B\n   30   REM c\n");
}

TEST(ProgramStore, StatementsContinuingALineShareItsNumber) {
  Program prog;
  Type(prog, "40 FIN: SLEEP 0.5 ! why");
  for (const Statement* s = prog.First(); s != prog.EndMark(); s = s->Next())
    EXPECT_EQ(s->Number(), 40u);
  ASSERT_EQ(Link(prog), 0u);
  EXPECT_EQ(::Run(prog, true), 1014u);
  EXPECT_EQ(loc::Number(g_err.location), 40u);
  ClearError();
}

TEST(ProgramStore, ListingIndentsBlocksAndKeepsLabelsAtTheMargin) {
  Program prog;
  for (const char* line : {"10 FOR I=1 TO 2", "20 WHILE I<0", "30 IN: PRINT I", "40 ;", "50 NEXT",
                           "60 NEXT I", "70 ELSE", "80 NEXT I", "90 REM done"})
    Type(prog, line);
  EXPECT_EQ(Listing(prog),
            "   10   FOR I=1 TO 2\n"
            "   20      WHILE I<0\n"
            "   30 IN: PRINT I\n"
            "   40 \n"
            "   50      NEXT\n"
            "   60   NEXT I\n"
            "   70   ELSE\n"    // a middle part at depth 0 is not indented
            "   80   NEXT I\n"  // a closer never takes the depth below 0
            "   90   REM done\n");
  EXPECT_EQ(Listing(prog, 0, false),
            "\tFOR I=1 TO 2\n\t\tWHILE I<0\nIN: PRINT I\n\n\t\tNEXT\n\tNEXT I\n\tELSE\n"
            "\tNEXT I\n\tREM done\n");
}

TEST(ProgramStore, LinkFailures) {
  {
    Program prog;
    Type(prog, "10 REM");
    Type(prog, "20 A: REM");
    Type(prog, "30 a: STOP");
    EXPECT_EQ(Link(prog), err::kDuplicateLabel);
    EXPECT_EQ(g_err.location >> 8, 30u);
  }
  {
    Program prog;
    Type(prog, "10 STOP");
    Type(prog, "20 SLEEP");
    Type(prog, "30 A: REM");
    Type(prog, "40 A: REM");
    EXPECT_EQ(Link(prog), 35u);  // the bad line comes first
    EXPECT_EQ(g_err.location >> 8, 20u);
  }
  {
    // A target that no statement resolves and none reports: 63, no location.
    Program prog;
    Type(prog, "10 STOP");
    TargetRef orphan(prog.targets, prog.targets.ReferNumber(99));
    EXPECT_EQ(Link(prog), 63u);
    EXPECT_FALSE(HasLocation());
  }
  ClearError();
}

TEST(ProgramStore, EndStopAndTheEndMarkEndQuietly) {
  for (const char* last : {"20 END", "20 STOP", "20 REM"}) {
    Program prog;
    Type(prog, "10 SLEEP 1.9");
    Type(prog, last);
    ASSERT_EQ(Link(prog), 0u);
    EXPECT_EQ(::Run(prog, true), 0u) << last;
    EXPECT_EQ(g_err.run, 0u);
    EXPECT_TRUE(prog.HasRun());
  }
}

TEST(ProgramStore, TargetsFollowTheirUsers) {
  Program prog;
  Type(prog, "10 GOTO 20");
  Type(prog, "20 GOTO FIN");
  Type(prog, "30 GOSUB fin:");
  ASSERT_NE(prog.FindTarget(20), nullptr);
  EXPECT_EQ(prog.FindTarget("FIN")->users, 2u);
  Type(prog, "30");
  EXPECT_EQ(prog.FindTarget("Fin")->users, 1u);
  Type(prog, "10");
  Type(prog, "20");
  EXPECT_EQ(prog.FindTarget(20), nullptr);
  EXPECT_EQ(prog.FindTarget("FIN"), nullptr);
}

// 100,000 lines typed in rising order, half of them deleted, then linked and run.
TEST(ProgramStore, LargeProgramsStayLinear) {
  auto start = std::chrono::steady_clock::now();
  Program prog;
  for (int i = 1; i <= 100000; ++i)
    Type(prog, std::to_string(i) + " GOTO " + std::to_string(i + 1));
  Type(prog, "100001 END");
  for (int i = 1; i <= 100000; i += 2) Type(prog, std::to_string(i));
  EXPECT_EQ(prog.Find(2)->Number(), 2u);
  // Every odd target is gone now: the GOTOs to them fail to link.
  EXPECT_EQ(Link(prog), 62u);
  for (int i = 2; i <= 100000; i += 2) Type(prog, std::to_string(i) + " REM");
  ASSERT_EQ(Link(prog), 0u);
  EXPECT_EQ(::Run(prog, true), 0u);
  auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_LT(seconds, 10.0);
}

// Runs a counting loop and returns the allocations the run made.
long AllocationsOfLoop(int count) {
  Program prog;
  Type(prog, "10 I=0");
  Type(prog, "20 I=I+1");
  Type(prog, "30 SLEEP I+1000 ! sleeps only when reached");
  Type(prog, "40 IF I<" + std::to_string(count) + " THEN 20");
  Type(prog, "50 END");
  prog.Delete(prog.Find(30));
  EXPECT_EQ(Link(prog), 0u);
  g_allocations = 0;
  g_counting = true;
  ErrorCode code = ::Run(prog, true);
  g_counting = false;
  EXPECT_EQ(code, 0u);
  return g_allocations;
}

TEST(ProgramStore, TheRunLoopDoesNotAllocatePerStatement) {
  if (!COUNTS_ALLOCATIONS) GTEST_SKIP() << "allocations cannot be counted here";
  g_allocations = 0;
  g_counting = true;
  auto probe = std::make_unique<int>(1);  // the counter sees operator new
  g_counting = false;
  ASSERT_EQ(g_allocations, 1);
  EXPECT_EQ(AllocationsOfLoop(10), AllocationsOfLoop(20000));
}

}  // namespace
