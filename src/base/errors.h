// Error codes, the location word, and the process-wide error state.
#pragma once
#include <cstdint>
#include <string>

using ErrorCode = uint32_t;

// Every code by name, from the one table; 0 is no error.
namespace err {
#define ERR(code, name, message) inline constexpr ErrorCode name = code;
#include "base/errors.def"
#undef ERR
}  // namespace err

// Location word layout, shared by statements and the error state.
namespace loc {
constexpr uint32_t kFileLine = 1u << 0;    // number is a line of the program file
constexpr uint32_t kStmtNumber = 1u << 1;  // number is a statement number
constexpr uint32_t kHidden = 1u << 2;      // not listed as a line of its own
constexpr uint32_t kTrailing = 1u << 3;    // continues the line of the statement before
constexpr uint32_t kFollowed = 1u << 4;    // another statement follows on this line
constexpr uint32_t kFlags = 0xFF;
inline uint32_t Number(uint32_t word) { return word >> 8; }
}  // namespace loc

// The four items of the error state; plain globals of the main thread.
struct ErrorState {
  ErrorCode parse = 0;    // set while scanning, parsing, loading and linking
  ErrorCode run = 0;      // set during execution
  uint32_t location = 0;  // where the run-time error happened
  std::string file;       // program file of the error, empty for the shell's program
  // What the report adds to the message of noteCode in parentheses: the
  // files a name stood for. Set where such a code is raised, empty or not.
  std::string note;
  ErrorCode noteCode = 0;
};
extern ErrorState g_err;

inline ErrorCode SetParseError(ErrorCode code) { return g_err.parse = code; }
inline ErrorCode SetRunError(ErrorCode code) { return g_err.run = code; }
inline ErrorCode Raise(ErrorCode code, uint32_t location) {
  g_err.location = location;
  return g_err.run = code;
}
inline void ClearError() {
  g_err.run = 0;
  g_err.location = 0;
}
inline bool HasLocation() { return (g_err.location & (loc::kFileLine | loc::kStmtNumber)) != 0; }
inline void SetErrorFile(const char* name) { g_err.file = name ? name : ""; }
inline void SetErrorNote(ErrorCode code, const std::string& note) {
  g_err.noteCode = code;
  g_err.note = note;
}

// The table's message for a code; "OK!" for a code the table does not hold.
const char* MessageOf(ErrorCode code);
