// Numeric storage: the undefined mark, subscripts and array limits.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "../expr/numeric_test_util.h"
#include "value/numeric.h"

namespace {

using numeric_test::LinkAll;
using numeric_test::Parse;

float FromBits(uint32_t bits) {
  float f;
  std::memcpy(&f, &bits, sizeof f);
  return f;
}

uint32_t BitsOf(float f) {
  uint32_t bits;
  std::memcpy(&bits, &f, sizeof bits);
  return bits;
}

class NumericStorage : public ::testing::Test {
 protected:
  void SetUp() override { g_err = ErrorState{}; }
  void TearDown() override { g_err = ErrorState{}; }

  // Declares an array as DIM would.
  void Dim(const char* name, std::vector<uint32_t> bounds) {
    const VarToken* sym = prog.Table(tok::kNumArray).FindOrCreate(name);
    ASSERT_EQ(
        MakeNumericArray(sym, DimensionList(std::move(bounds)), &prog.variables.NumericArray(sym)),
        0u);
  }
  // A linked assignment target.
  std::unique_ptr<NumericVar> Target(const char* text) {
    prog.StartLine(text);
    auto v = ParseNumericVar(prog);
    EXPECT_TRUE(v);
    if (v) {
      EXPECT_EQ(static_cast<Reference&>(*v).Link(prog), 0u);
    }
    return v;
  }
  // Reads a linked element or scalar; the run-time error is left for the caller.
  float Read(const char* text, ErrorCode* error) {
    auto e = Parse(prog, text);
    EXPECT_TRUE(e) << text;
    if (!e) return -1;
    EXPECT_EQ(LinkAll(prog), 0u) << text;
    float value = numeric_test::Run(*e);
    *error = g_err.run;
    return value;
  }

  Program prog;
};

TEST_F(NumericStorage, UndefinedMarkIsExactlyOneBitPattern) {
  EXPECT_EQ(BitsOf(UndefinedValue()), 0xFFFF0000u);
  EXPECT_TRUE(IsUndefined(FromBits(0xFFFF0000u)));
  // Other NaNs, arithmetic ones included, are ordinary values.
  for (uint32_t bits : {0xFFFF0001u, 0x7FFF0000u, 0xFFC00000u, 0x7FC00000u})
    EXPECT_FALSE(IsUndefined(FromBits(bits))) << std::hex << bits;
  volatile float zero = 0.0f;
  EXPECT_FALSE(IsUndefined(zero / zero));
  EXPECT_FALSE(IsUndefined(-(zero / zero)));

  SetRunError(0);
  EXPECT_EQ(ReadValue(FromBits(0xFFFF0000u)), 0.0f);
  EXPECT_EQ(g_err.run, 1001u);
  SetRunError(0);
  float nan = ReadValue(FromBits(0xFFFF0001u));
  EXPECT_TRUE(nan != nan);
  EXPECT_EQ(g_err.run, 0u);
}

TEST_F(NumericStorage, ScalarsStartUndefinedAndAssignStoresAnything) {
  ErrorCode error = 0;
  EXPECT_EQ(Read("X", &error), 0.0f);
  EXPECT_EQ(error, 1001u);
  auto x = Target("X");
  x->Assign(2.5f);
  EXPECT_EQ(Read("X*2", &error), 5.0f);
  EXPECT_EQ(error, 0u);
  // Storing the mark itself makes the variable undefined again.
  x->Assign(FromBits(0xFFFF0000u));
  EXPECT_EQ(g_err.run, 0u);
  EXPECT_EQ(Read("X+1", &error), 1.0f);
  EXPECT_EQ(error, 1001u);
  // 1001 replaces an earlier error.
  NumericExpPtr x2 = Parse(prog, "X");
  LinkAll(prog);
  SetRunError(1002);
  EXPECT_EQ(x2->Evaluate(), 0.0f);
  EXPECT_EQ(g_err.run, 1001u);
}

TEST_F(NumericStorage, ImplicitArrayOfTenWithRoundedSubscripts) {
  auto a = Target("A(1)");
  const NumericScriptData& data = *prog.variables.NumericArray(a->Name());
  ASSERT_EQ(data.count, 10u);
  for (uint32_t i = 0; i < data.count; ++i) EXPECT_EQ(BitsOf(data.elements[i]), 0xFFFF0000u);
  Target("A(10.4)")->Assign(10);
  Target("A(0.5)")->Assign(1);
  EXPECT_EQ(data.elements[9], 10.0f);
  EXPECT_EQ(data.elements[0], 1.0f);
  ErrorCode error = 0;
  EXPECT_EQ(Read("A(1.49)", &error), 1.0f);
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(Read("A(9.5)", &error), 10.0f);
  EXPECT_EQ(error, 0u);
  for (const char* bad : {"A(0)", "A(0.49)", "A(11)", "A(10.5)", "A(-1)", "A(1E30)"}) {
    EXPECT_EQ(Read(bad, &error), 0.0f) << bad;
    EXPECT_EQ(error, 1002u) << bad;
  }
  EXPECT_EQ(Read("A(2)", &error), 0.0f);  // in bounds, never assigned
  EXPECT_EQ(error, 1001u);
  // An out-of-bounds store stores nothing; an earlier error is kept.
  SetRunError(0);
  Target("A(11)")->Assign(5);
  EXPECT_EQ(g_err.run, 1002u);
  NumericExpPtr a0 = Parse(prog, "A(0)");
  LinkAll(prog);
  SetRunError(1001);
  EXPECT_EQ(a0->Evaluate(), 0.0f);
  EXPECT_EQ(g_err.run, 1001u);
}

TEST_F(NumericStorage, OnlyTheLastSubscriptIsChecked) {
  Dim("B", {3, 3});
  Target("B(1,2)")->Assign(12);
  Target("B(2,3)")->Assign(23);
  const NumericScriptData& b = *prog.variables.NumericArray(prog.Table(tok::kNumArray).Find("B"));
  EXPECT_EQ(b.elements[1], 12.0f);
  EXPECT_EQ(b.elements[5], 23.0f);  // row-major: (2-1)*3 + (3-1)
  ErrorCode error = 0;
  EXPECT_EQ(Read("B(0,2)", &error), 12.0f);
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(Read("B(4,2)", &error), 12.0f);
  EXPECT_EQ(error, 0u);
  for (const char* bad : {"B(2,0)", "B(2,4)", "B(0,0)"}) {
    EXPECT_EQ(Read(bad, &error), 0.0f) << bad;
    EXPECT_EQ(error, 1002u) << bad;
  }
  Dim("C", {2, 3, 4});
  Target("C(2,1,3)")->Assign(213);
  EXPECT_EQ(Read("C(2,9,3)", &error), 213.0f);
  EXPECT_EQ(Read("C(0,1,3)", &error), 0.0f);  // C(1,1,3): undefined, but addressed
  EXPECT_EQ(error, 1001u);
  EXPECT_EQ(Read("C(2,1,5)", &error), 0.0f);
  EXPECT_EQ(error, 1002u);
}

TEST_F(NumericStorage, ElementLimit) {
  std::unique_ptr<NumericScriptData> data;
  EXPECT_EQ(MakeNumericArray(nullptr, DimensionList({4096, 4096}), &data), 59u);
  EXPECT_EQ(MakeNumericArray(nullptr, DimensionList({5000, 5000}), &data), 59u);
  EXPECT_EQ(MakeNumericArray(nullptr, DimensionList({256, 256, 256}), &data), 59u);
  EXPECT_EQ(MakeNumericArray(nullptr, DimensionList({0xFFFFFFFFu, 0xFFFFFFFFu, 2}), &data), 59u);
  EXPECT_EQ(data, nullptr);
  ASSERT_EQ(MakeNumericArray(nullptr, DimensionList({4095, 4096}), &data), 0u);
  EXPECT_EQ(data->count, 4095u * 4096u);
  EXPECT_EQ(BitsOf(data->elements[data->count - 1]), 0xFFFF0000u);
  EXPECT_EQ(data->dims.Total(), 4095.0 * 4096.0);
  // The last valid element of the largest shape.
  float last[2] = {4095, 4096};
  EXPECT_EQ(ElementIndex(data->dims, last), int64_t{4095} * 4096 - 1);
}

TEST_F(NumericStorage, LinkingArrays) {
  Dim("D", {2, 2});
  prog.StartLine("D(1)");
  auto oneSub = ParseNumericVar(prog);
  EXPECT_EQ(static_cast<Reference&>(*oneSub).Link(prog), 1003u);
  prog.StartLine("U(1,2)");
  auto undeclared = ParseNumericVar(prog);
  EXPECT_EQ(static_cast<Reference&>(*undeclared).Link(prog), 65u);
  EXPECT_EQ(prog.variables.NumericArray(undeclared->Name()), nullptr);
  prog.StartLine("I(1)");
  auto implicit = ParseNumericVar(prog);
  EXPECT_EQ(static_cast<Reference&>(*implicit).Link(prog), 0u);
  prog.StartLine("I(1,1)");
  auto twoSubs = ParseNumericVar(prog);
  EXPECT_EQ(static_cast<Reference&>(*twoSubs).Link(prog), 1003u);
  // Brackets of any kind are accepted and listed as parentheses.
  prog.StartLine("D[1,2]");
  auto bracketed = ParseNumericVar(prog);
  ASSERT_TRUE(bracketed);
  EXPECT_EQ(numeric_test::ListOf(*bracketed), "D(1,2)");
}

TEST_F(NumericStorage, DimensionCompatibilityComparesBoundsAsFloats) {
  EXPECT_TRUE(DimensionList({3, 4}).Compatible(DimensionList({3, 4})));
  EXPECT_FALSE(DimensionList({3, 4}).Compatible(DimensionList({4, 3})));
  EXPECT_FALSE(DimensionList({3}).Compatible(DimensionList({3, 1})));
  EXPECT_TRUE(DimensionList({16777217}).Compatible(DimensionList({16777216})));
  std::string out;
  DimensionList({3, 40, 5}).List(out);
  EXPECT_EQ(out, "3,40,5");
}

}  // namespace
