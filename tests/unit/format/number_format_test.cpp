#include "format/number_format.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

struct Row {
  float value;
  const char* text;
  int reserve;
};

std::string Format(float value, int* reserve) {
  char buffer[kNumberBufferSize];
  size_t length = FormatNumber(value, buffer, reserve);
  return std::string(buffer, length);
}

void ExpectRows(std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    int reserve = -1;
    EXPECT_EQ(Format(row.value, &reserve), row.text) << row.value;
    EXPECT_EQ(reserve, row.reserve) << row.value;
  }
}

TEST(NumberFormat, SmallIntegers) {
  ExpectRows({{0, " 0    ", 4},
              {-0.0f, " 0    ", 4},
              {5, " 5    ", 4},
              {-5, "-5    ", 4},
              {999, " 999  ", 4},
              {-999, "-999  ", 4}});
}

// The negative format of this row is one character narrower than the positive one.
TEST(NumberFormat, IntegersUpTo32767) {
  ExpectRows({{1000, " 1000    ", 6},
              {-1000, "-1000   ", 6},
              {32767, " 32767   ", 6},
              {-32767, "-32767   ", 6}});
}

TEST(NumberFormat, LargeIntegersCarryAPoint) {
  ExpectRows({{32768, " 32768.    ", 8},
              {-32768, "-32768.    ", 8},
              {40000, " 40000.    ", 8},
              {99999, " 99999.    ", 8},
              {100000, " 100000.    ", 8},
              {-100000, "-100000.    ", 8},
              {500000, " 500000.    ", 8},
              {999999, " 999999.    ", 8},
              {-999999, "-999999.    ", 8}});
}

// Whole numbers are laid out by hand; they must match the printf formats
// that define them, for every value near the row limits and a spread between.
TEST(NumberFormat, WholeNumbersMatchTheirPrintfForms) {
  auto reference = [](int i) {
    char buffer[64];
    double x = i;
    int a = i < 0 ? -i : i;
    if (a <= 999)
      snprintf(buffer, sizeof buffer, i >= 0 ? " %-3d  " : "%+-4d  ", i);
    else if (a <= 32767)
      snprintf(buffer, sizeof buffer, i >= 0 ? " %-5d   " : "%+-5d   ", i);
    else if (a <= 99999)
      snprintf(buffer, sizeof buffer, i >= 0 ? " %-5lg.    " : "%+-6lg.    ", x);
    else
      snprintf(buffer, sizeof buffer, i >= 0 ? " %-6lG.    " : "%+-7lG.    ", x);
    return std::string(buffer);
  };
  for (int i = -999999; i <= 999999;
       i += (i > -40000 && i < 40000) || std::abs(i) % 100000 > 99000 ? 1 : 97) {
    int reserve;
    ASSERT_EQ(Format(static_cast<float>(i), &reserve), reference(i)) << i;
  }
}

TEST(NumberFormat, IntegersFromAMillionUseExponents) {
  ExpectRows({{1000000, " 1.00000E+06   ", 11},
              {-1000000, "-1.00000E+06   ", 11},
              {2.5e9f, " 2.50000E+09   ", 11},  // beyond 32 bits
              {-2147483648.0f, "-2.14748E+09   ", 11}});
}

TEST(NumberFormat, Fractions) {
  ExpectRows({{0.5f, " 0.5       ", 8},
              {-0.5f, "-0.5       ", 8},
              {123.456f, " 123.46    ", 8},
              {-123.456f, "-123.46    ", 8},
              {1e-7f, " 1E-07     ", 8},
              {999999.375f, " 1E+06     ", 8},  // just below 999999.5
              {999999.5f, " 1.00000E+06   ", 11},
              {-999999.5f, "-1.00000E+06   ", 11},
              {1234567.5f, " 1.23457E+06   ", 11}});
}

TEST(NumberFormat, NotANumberFallsToTheExponentRow) {
  int reserve = 0;
  Format(__builtin_nanf(""), &reserve);
  EXPECT_EQ(reserve, 11);
  Format(__builtin_inff(), &reserve);
  EXPECT_EQ(reserve, 11);
}

}  // namespace
