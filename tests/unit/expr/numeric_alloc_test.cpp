// Evaluating a linked expression tree must not allocate. This file replaces the
// global allocation functions of the test binary with counting ones, which
// other tests read through alloc_count.h.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "alloc_count.h"
#include "numeric_test_util.h"

namespace {
std::atomic<long> g_allocations{0};
}  // namespace

long AllocationCount() { return g_allocations.load(); }

void* operator new(std::size_t size) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
// Kept out of line: inlined, free() beside a visible new looks mismatched to the compiler.
__attribute__((noinline)) void operator delete(void* p) noexcept { std::free(p); }
__attribute__((noinline)) void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

using numeric_test::LinkAll;
using numeric_test::Parse;

class NumericAlloc : public ::testing::Test {
 protected:
  void SetUp() override { g_err = ErrorState{}; }
  void TearDown() override { g_err = ErrorState{}; }

  void Set(const char* target, float value) {
    prog.StartLine(target);
    auto v = ParseNumericVar(prog);
    ASSERT_TRUE(v);
    ASSERT_EQ(static_cast<Reference&>(*v).Link(prog), 0u);
    v->Assign(value);
  }
  // Allocations made by 1000 evaluations after a first, warming one.
  long CountEvaluations(NumericExp& e) {
    e.Evaluate();
    long before = g_allocations.load();
    for (int i = 0; i < 1000; ++i) e.Evaluate();
    return g_allocations.load() - before;
  }

  Program prog;
};

TEST_F(NumericAlloc, TheCounterSeesAllocations) {
  long before = g_allocations.load();
  // Stored through a volatile pointer so the optimiser cannot drop the pair.
  int* volatile p = new int(5);
  delete p;
  EXPECT_EQ(g_allocations.load() - before, 1);
}

TEST_F(NumericAlloc, EvaluationAllocatesNothing) {
  NumericExpPtr e = Parse(prog,
                          "X*2+A(I)-B(I,J)/3>Y AND NOT Z OR (X MIN Y) MOD 7<=X^2 XOR "
                          "-X**0.5 EQV Y DIV 2 IMP A(I+1)#B(J,I)");
  ASSERT_TRUE(e);
  ASSERT_EQ(prog.Peek(), tok::kEndOfLine);
  {
    const VarToken* b = prog.Table(tok::kNumArray).FindOrCreate("B");
    ASSERT_EQ(MakeNumericArray(b, DimensionList({3, 3}), &prog.variables.NumericArray(b)), 0u);
  }
  ASSERT_EQ(LinkAll(prog), 0u);
  Set("X", 3);
  Set("Y", 4);
  Set("Z", 0);
  Set("I", 1);
  Set("J", 2);
  Set("A(1)", 5);
  Set("A(2)", 6);
  Set("B(1,2)", 7);
  Set("B(2,1)", 8);
  SetRunError(0);
  EXPECT_EQ(CountEvaluations(*e), 0);
  EXPECT_EQ(g_err.run, 0u);
  // Failing reads raise errors without allocating either.
  NumericExpPtr bad = Parse(prog, "U+A(11)+B(1,9)");
  ASSERT_TRUE(bad);
  ASSERT_EQ(LinkAll(prog), 0u);
  EXPECT_EQ(CountEvaluations(*bad), 0);
  EXPECT_EQ(g_err.run, 1001u);
}

TEST_F(NumericAlloc, StringComparisonsReuseTheirBuffers) {
  NumericExpPtr e = Parse(prog, "S$<T$ AND S$[2,3]=\"bc\" OR \"x\">T$[1;4]");
  ASSERT_TRUE(e);
  ASSERT_EQ(LinkAll(prog), 0u);
  for (auto [name, text] : {std::pair{"S$", "abcd"}, std::pair{"T$", "abce"}}) {
    prog.StartLine(name);
    auto v = ParseStringVar(prog);
    ASSERT_TRUE(v);
    ASSERT_EQ(static_cast<StringWholeVar&>(*v).Link(prog), 0u);
    v->Assign(text);
  }
  SetRunError(0);
  EXPECT_EQ(e->Evaluate(), 1.0f);
  EXPECT_EQ(CountEvaluations(*e), 0);
}

}  // namespace
