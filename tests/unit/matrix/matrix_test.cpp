// The matrix kernels and array reshaping behind MAT.
#include "matrix/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "value/numeric.h"

namespace {

bool Never() { return false; }
bool Always() { return true; }

std::vector<float> Product(const std::vector<float>& a, const std::vector<float>& b, uint32_t m,
                           uint32_t n, uint32_t p) {
  MatrixWork work;
  EXPECT_EQ(MatrixProduct(a.data(), b.data(), m, n, p, work, Never), 0u);
  std::vector<float> out(size_t{m} * p);
  StoreResult(work, m * p, out.data());
  return out;
}

TEST(MatrixKernels, ProductAndTranspose) {
  // (2 x 3) times (3 x 2).
  EXPECT_EQ(Product({1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}, 2, 3, 2),
            (std::vector<float>{58, 64, 139, 154}));
  // A row times a matrix, and a matrix times a column.
  EXPECT_EQ(Product({1, 2}, {3, 4, 5, 6}, 1, 2, 2), (std::vector<float>{13, 16}));
  EXPECT_EQ(Product({3, 4, 5, 6}, {1, 2}, 2, 2, 1), (std::vector<float>{11, 17}));

  MatrixWork work;
  float a[] = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(MatrixTranspose(a, 2, 3, work), 0u);
  EXPECT_EQ(work.values, (std::vector<double>{1, 4, 2, 5, 3, 6}));
}

TEST(MatrixKernels, InverseOfAKnownSystem) {
  // The first pivot is 0: only a row exchange finds one.
  float a[] = {0, 1, 1, 1, 3, 2, 1, 0, 0};
  MatrixWork work;
  ASSERT_EQ(0u, MatrixInverse(a, 3, work, Never));
  std::vector<double> expected = {0, 0, 1, -2, 1, -1, 3, -1, 1};
  for (size_t i = 0; i < 9; ++i) EXPECT_NEAR(work.values[i], expected[i], 1e-12) << i;
}

TEST(MatrixKernels, SingularAndNearlySingular) {
  MatrixWork work;
  float zero[] = {0, 0, 0, 0};
  EXPECT_EQ(err::kSingularMatrix, MatrixInverse(zero, 2, work, Never));
  float twice[] = {1, 2, 2, 4};
  EXPECT_EQ(err::kSingularMatrix, MatrixInverse(twice, 2, work, Never));
  // Singular in exact arithmetic; the elimination leaves only rounding noise.
  float rows[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_EQ(err::kSingularMatrix, MatrixInverse(rows, 3, work, Never));
  float nan[] = {1, NAN, 0, 1};
  EXPECT_EQ(err::kSingularMatrix, MatrixInverse(nan, 2, work, Never));
  // An inverse too large for floats is refused, not stored as infinities.
  float tiny[] = {1e-30f, 0, 0, 1e-30f};
  EXPECT_EQ(0u, MatrixInverse(tiny, 2, work, Never));
  float tinier[] = {1e-39f, 0, 0, 1e-39f};
  EXPECT_EQ(err::kSingularMatrix, MatrixInverse(tinier, 2, work, Never));
  // Ill-conditioned but well inside float precision: it has an inverse.
  float close[] = {1, 1, 1, 1.001f};
  ASSERT_EQ(0u, MatrixInverse(close, 2, work, Never));
  EXPECT_NEAR(work.values[0], 1001, 0.1);
}

TEST(MatrixKernels, LargeInverseGivesTheIdentityBack) {
  constexpr uint32_t n = 200;
  std::mt19937 random(7);
  std::uniform_real_distribution<float> value(-1, 1);
  std::vector<float> a(n * n);
  for (float& x : a) x = value(random);
  MatrixWork work;
  ASSERT_EQ(0u, MatrixInverse(a.data(), n, work, Never));
  std::vector<float> inverse(n * n);
  StoreResult(work, n * n, inverse.data());
  std::vector<float> identity = Product(a, inverse, n, n, n);
  double worst = 0;
  for (uint32_t i = 0; i < n; ++i)
    for (uint32_t j = 0; j < n; ++j)
      worst = std::max(worst, std::fabs(identity[i * n + j] - (i == j ? 1.0 : 0.0)));
  EXPECT_LT(worst, 1e-3);
}

TEST(MatrixKernels, AStopCheckEndsALongComputation) {
  std::vector<float> a(100 * 100, 1.0f);
  MatrixWork work;
  EXPECT_EQ(MatrixProduct(a.data(), a.data(), 100, 100, 100, work, Always), err::kBreak);
  EXPECT_EQ(MatrixInverse(a.data(), 100, work, Always), err::kBreak);
}

TEST(MatrixKernels, UndefinedElementsAreFound) {
  float values[] = {1, 2, UndefinedValue()};
  EXPECT_TRUE(AllDefined(values, 2));
  EXPECT_FALSE(AllDefined(values, 3));
}

TEST(ArrayShape, ReshapeStaysWithinTheCreatedRoom) {
  std::unique_ptr<NumericScriptData> data;
  ASSERT_EQ(MakeNumericArray(nullptr, DimensionList({3, 4}), &data), 0u);
  uint32_t square[] = {3, 3};
  EXPECT_EQ(data->Reshape(square), 0u);
  EXPECT_EQ(data->count, 9u);
  EXPECT_EQ(data->dims.Stride(0), 3u);
  uint32_t full[] = {12};
  EXPECT_EQ(data->Reshape(full), 0u);
  EXPECT_EQ(data->dims.Count(), 1u);
  uint32_t past[] = {13};
  EXPECT_EQ(data->Reshape(past), err::kDimensionMismatch);
  uint32_t huge[] = {0xFFFFFF, 0xFFFFFF};
  EXPECT_EQ(data->Reshape(huge), err::kDimensionMismatch);
  EXPECT_EQ(data->count, 12u);  // a refused shape changes nothing
  EXPECT_EQ(data->capacity, 12u);
}

}  // namespace
