// Matrix arithmetic for MAT: row-major float arrays in, results computed in
// double into a work area that the program keeps, so a target may also be an
// operand and repeated statements reuse the same memory.
#pragma once
#include <cstdint>
#include <vector>

#include "base/errors.h"

struct MatrixWork {
  std::vector<double> values;    // the last result, row-major
  std::vector<uint32_t> pivots;  // row exchanges of the last inversion
};

// True when no element holds the undefined mark.
bool AllDefined(const float* values, uint32_t count);

// Asked between rows: true when the computation must stop (Ctrl+C, taken by the asking).
using StopCheck = bool (*)();

// The kernels return 0, kNoMemory when the work area cannot grow, or kBreak when stop
// said so; work.values is then unspecified.

// work.values = a (m x n) times b (n x p), m x p.
ErrorCode MatrixProduct(const float* a, const float* b, uint32_t m, uint32_t n, uint32_t p,
                        MatrixWork& work, StopCheck stop);
// work.values = the transpose of a (m x n), n x m.
ErrorCode MatrixTranspose(const float* a, uint32_t m, uint32_t n, MatrixWork& work);
// work.values = the inverse of a (n x n) by Gauss-Jordan elimination with
// partial pivoting. kSingularMatrix when a is singular, or so nearly singular that a
// pivot is lost in the float precision of its elements, or when the inverse
// does not fit in floats.
ErrorCode MatrixInverse(const float* a, uint32_t n, MatrixWork& work, StopCheck stop);
// Stores the work area's first count values as floats.
void StoreResult(const MatrixWork& work, uint32_t count, float* out);
