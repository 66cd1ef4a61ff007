// RENUMBER: new numbers for a range of lines, with every reference to them.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

class Program;

struct RenumberRequest {
  uint32_t start = 10;  // the first new number
  uint32_t step = 10;
  uint32_t first = 1;  // the old numbers of the lines to move
  uint32_t last = 999999;
};

// What RENUMBER did: why it changed nothing, or the lines it could not vouch for.
struct RenumberReport {
  std::string refusal;             // empty when the lines moved
  std::vector<std::string> notes;  // "20 GOTO 95: no line 95", "30 ?GOTO 1O: not rewritten"
};

// Moves the lines from first to last to start, start+step, ... in place: the
// order of lines never changes, so it refuses when the new numbers would pass
// 999999 or a line outside the range, or would give a number that a reference
// to a missing line holds. References to the moved lines follow them, CHAIN's
// start number too when the file it names is the program's own.
RenumberReport RenumberLines(Program& prog, const RenumberRequest& request);
