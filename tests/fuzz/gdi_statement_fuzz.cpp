// libFuzzer target: any bytes after one of the eight graphics keywords, parsed
// as a program line. A line that parses lists in the "KEYWORD @" form as text
// that parses again. (Listings of expressions are held to reading back the
// same by the expression tests; here only the statement's own frame is.) The
// file forms of CLOSE and UPDATE are left to the program targets.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "console/console.h"
#include "program/program.h"

namespace {

std::string Listing(const std::string& line) {
  Program prog;
  SetParseError(0);
  prog.StartLine(line.c_str());
  auto statements = prog.ParseLine();
  std::string out;
  if (statements.empty() || statements.front()->ParseError()) return out;
  statements.front()->List(out);
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const char* const kKeywords[] = {"WINDOW ", "CLOSE ",  "COLOR ", "MOVETO ",
                                          "LINETO ", "UPDATE ", "SHOW ",  "HIDE "};
  if (size == 0 || size > Console::kLineMax) return 0;
  std::string line = kKeywords[data[0] % 8];
  line.append(reinterpret_cast<const char*>(data) + 1, size - 1);
  line = line.substr(0, line.find_first_of(std::string("\0\n", 2)));
  // CLOSE # and UPDATE # are data file statements, fuzzed with the file reader.
  size_t after = line.find_first_not_of(' ', line.find(' '));
  if (after != std::string::npos && line[after] == '#') return 0;
  std::string first = Listing(line);
  if (first.empty()) return 0;
  std::string keyword = kKeywords[data[0] % 8];
  keyword.back() = ' ';
  if (first.compare(0, keyword.size() + 1, keyword + "@") != 0) std::abort();
  if (Listing(first).compare(0, keyword.size() + 1, keyword + "@") != 0) std::abort();
  return 0;
}
