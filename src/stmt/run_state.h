// What a run changes besides the variables: call frames, the DATA position,
// GOSUB returns, where the run stands and the console it talks to. The
// program owns one; statements and functions hold on to the parts they use.
#pragma once
#include <cstdint>
#include <string>

#include "expr/call_frames.h"
#include "lex/token.h"
#include "files/file_units.h"
#include "matrix/matrix.h"

class Console;
class DataStmt;
class Statement;

// One constant of a DATA statement.
struct DataItem {
  TokenCode type;  // tok::kNumVar for a number, tok::kStrVar for a string
  float number;
  std::string text;
};

// Where READ takes its next item.
struct DataReader {
  DataStmt* first = nullptr;
  DataStmt* last = nullptr;  // last DATA chained so far, while linking
  DataStmt* current = nullptr;
  const DataItem* item = nullptr;  // next item to read; null when exhausted
  Statement* endTarget = nullptr;  // ON END THEN target, or null

  // stmt is about to be deleted: a position in it moves to the first DATA
  // statement after it, so that TYP never reads a deleted item (data.cpp).
  void Forget(Statement* stmt);
};

// The GOSUB return points.
struct RunFrame {
  static constexpr uint32_t kMaxGosub = 100;
  uint32_t failLocation = 0;  // where the last run stopped on an error
  uint32_t depth = 0;         // GOSUB nesting
  Statement* returns[kMaxGosub] = {};
};

struct RunState {
  CallFrames calls;              // parameters of the active DEF calls
  DataReader data;               // the DATA position
  RunFrame frame;                // GOSUB returns
  Statement* current = nullptr;  // set when a run starts; kept after it ends
  FileUnits files;               // closed by every link and at the end of every run
  Console* console = nullptr;    // PRINT and INPUT go here; bound by each run
  MatrixWork matrix;             // where MAT products, transposes and inverses are computed
};
