#include "matrix/matrix.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <new>
#include <utility>

#include "value/numeric.h"

namespace {

// Sizes a work vector; false when memory is short (the program goes on with kNoMemory).
template <typename T>
bool Fit(std::vector<T>& v, size_t size) {
  try {
    v.resize(size);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

}  // namespace

bool AllDefined(const float* values, uint32_t count) {
  for (uint32_t i = 0; i < count; ++i)
    if (IsUndefined(values[i])) return false;
  return true;
}

ErrorCode MatrixProduct(const float* a, const float* b, uint32_t m, uint32_t n, uint32_t p,
                        MatrixWork& work, StopCheck stop) {
  if (!Fit(work.values, size_t{m} * p)) return err::kNoMemory;
  // Row by row, each row of b scaled and added: the inner loop runs along
  // memory in both arrays.
  for (uint32_t i = 0; i < m; ++i) {
    if (stop()) return err::kBreak;
    double* row = work.values.data() + size_t{i} * p;
    std::fill_n(row, p, 0.0);
    for (uint32_t k = 0; k < n; ++k) {
      double factor = a[size_t{i} * n + k];
      const float* brow = b + size_t{k} * p;
      for (uint32_t j = 0; j < p; ++j) row[j] += factor * brow[j];
    }
  }
  return 0;
}

ErrorCode MatrixTranspose(const float* a, uint32_t m, uint32_t n, MatrixWork& work) {
  if (!Fit(work.values, size_t{m} * n)) return err::kNoMemory;
  for (uint32_t i = 0; i < m; ++i)
    for (uint32_t j = 0; j < n; ++j) work.values[size_t{j} * m + i] = a[size_t{i} * n + j];
  return 0;
}

ErrorCode MatrixInverse(const float* a, uint32_t n, MatrixWork& work, StopCheck stop) {
  size_t size = size_t{n} * n;
  if (!Fit(work.values, size) || !Fit(work.pivots, n)) return err::kNoMemory;
  double* w = work.values.data();
  std::copy_n(a, size, w);
  double scale = 0;
  for (size_t i = 0; i < size; ++i) scale = std::max(scale, std::fabs(w[i]));
  if (!(scale > 0) || !std::isfinite(scale)) return err::kSingularMatrix;
  // The elements carry float precision only: a pivot below their rounding
  // noise, summed over a row, is no pivot at all.
  double tolerance = scale * FLT_EPSILON * n;
  for (uint32_t k = 0; k < n; ++k) {
    if (stop()) return err::kBreak;
    uint32_t best = k;
    double largest = std::fabs(w[size_t{k} * n + k]);
    for (uint32_t i = k + 1; i < n; ++i) {
      double v = std::fabs(w[size_t{i} * n + k]);
      if (v > largest) {
        largest = v;
        best = i;
      }
    }
    if (!(largest > tolerance)) return err::kSingularMatrix;  // NaN fails here too
    work.pivots[k] = best;
    double* rowk = w + size_t{k} * n;
    if (best != k) std::swap_ranges(rowk, rowk + n, w + size_t{best} * n);
    double pivot = rowk[k];
    rowk[k] = 1.0;
    for (uint32_t j = 0; j < n; ++j) rowk[j] /= pivot;
    for (uint32_t i = 0; i < n; ++i) {
      if (i == k) continue;
      double* row = w + size_t{i} * n;
      double factor = row[k];
      if (factor == 0) continue;
      row[k] = 0.0;
      for (uint32_t j = 0; j < n; ++j) row[j] -= factor * rowk[j];
    }
  }
  // Row exchanges of the input become column exchanges of the inverse, undone last first.
  for (uint32_t k = n; k-- > 0;) {
    uint32_t other = work.pivots[k];
    if (other == k) continue;
    for (uint32_t i = 0; i < n; ++i) std::swap(w[size_t{i} * n + k], w[size_t{i} * n + other]);
  }
  for (size_t i = 0; i < size; ++i)
    if (!(std::fabs(w[i]) <= FLT_MAX)) return err::kSingularMatrix;
  return 0;
}

void StoreResult(const MatrixWork& work, uint32_t count, float* out) {
  for (uint32_t i = 0; i < count; ++i) out[i] = static_cast<float>(work.values[i]);
}
