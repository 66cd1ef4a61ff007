// Allocations made through operator new since the test binary started
// (counted in expr/numeric_alloc_test.cpp, which replaces the global one).
#pragma once

long AllocationCount();
