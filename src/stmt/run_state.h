// What a run changes besides the variables: the DATA position, GOSUB returns,
// where the run stands and the console it talks to. The program owns one;
// statements and functions hold on to the parts they use.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "lex/token.h"

class Console;
class DataStmt;
class FileUnits;
class Statement;
class VarToken;
struct MatrixWork;

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
  // Reading starts over at the first DATA statement, if there is one.
  void RestoreFirst();
};

// The GOSUB return points.
struct RunFrame {
  static constexpr uint32_t kMaxGosub = 100;
  uint32_t failLocation = 0;  // where the last run stopped on an error
  uint32_t depth = 0;         // GOSUB nesting
  Statement* returns[kMaxGosub] = {};
};

// A FOR loop that runs under the classic switch, which matches NEXT to FOR
// while running (for_next.cpp): one per variable and GOSUB level.
struct ActiveLoop {
  const VarToken* var;
  Statement* body;  // the first statement after the FOR
  float limit;
  float step;
  uint32_t depth;  // the GOSUB level that opened it; its RETURN ends it
};

struct RunState {
  DataReader data;                // the DATA position
  RunFrame frame;                 // GOSUB returns
  std::vector<ActiveLoop> loops;  // classic FOR loops, the most recent last
  Statement* current = nullptr;   // set when a run starts; kept after it ends
  // Where CONTINUE goes on after a STOP or a break of a shell run; null when the
  // last run ended otherwise. The stopped run keeps its data files open.
  Statement* resume = nullptr;
  Console* console = nullptr;  // PRINT and INPUT go here; bound by each run
  // The program's data files and the work area of MAT products, transposes and
  // inverses: the program owns them, and only files/ and matrix/ look inside.
  FileUnits* files = nullptr;
  MatrixWork* matrix = nullptr;

  // A run starts with no GOSUB return and no loop.
  void StartFrame() {
    frame = RunFrame{};
    loops.clear();
  }
  // RETURN to depth ends the classic loops of the level it leaves.
  void EndLoopsAbove(uint32_t depth) {
    while (!loops.empty() && loops.back().depth > depth) loops.pop_back();
  }
};
