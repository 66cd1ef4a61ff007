// The fixed number formats of PRINT: a format chosen by the value's magnitude
// and integrality, and the reserve the line fold tests before writing it.
#pragma once
#include <cstddef>

class PrintSink;

constexpr size_t kNumberBufferSize = 260;

// Writes the formatted value into buffer (NUL-terminated) and returns its length.
size_t FormatNumber(float value, char (&buffer)[kNumberBufferSize], int* reserve);

// Folds the line if needed and prints the formatted value.
void PrintNumber(PrintSink& out, float value);
