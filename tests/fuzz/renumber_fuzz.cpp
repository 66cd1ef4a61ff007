// RENUMBER on random programs built from statements with every kind of
// reference: the listing after it, with the numbers mapped back, must be the
// listing before it. The program is made of templates whose reference slots
// name a line of it or a number no line has; it is then written out again with
// the numbers a correct RENUMBER gives (moved lines and the references to them
// take their new numbers; references to missing lines, bad lines and other
// programs' CHAIN starts keep theirs), and the two listings must agree. A
// refusal must change nothing and happen exactly when the rules say.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz_support.h"
#include "program/loader.h"
#include "program/program.h"
#include "program/renumber.h"

namespace {

// Reads choices from the input; zeros once it is used up.
class Choices {
 public:
  Choices(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  unsigned Byte() { return pos_ < size_ ? data_[pos_++] : 0; }
  unsigned Below(unsigned n) { return n ? (Byte() | Byte() << 8) % n : 0; }
  bool Empty() const { return pos_ >= size_; }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t pos_ = 0;
};

// Slots: "%" a statement reference, "@" a CHAIN start in this program, "&" one
// in another program, "^" a number that is only text (a comment, a bad line).
struct Template {
  const char* text;
  bool bad;
};

constexpr Template kTemplates[] = {
    {"GOTO %", false},
    {"GOSUB %", false},
    {"IF X>1 THEN %", false},
    {"IF X THEN GOSUB %", false},
    {"IF X THEN RESTORE %", false},
    {"ON X GOTO %,%,%", false},
    {"ON X GOSUB % ELSE %", false},
    {"GOTO X OF %,% ELSE %", false},
    {"GOSUB X+1 OF %", false},
    {"RESTORE %", false},
    {"ON X RESTORE %,%", false},
    {"RESTORE X OF % ELSE %", false},
    {"PRINT USING %;X", false},
    {"ON END THEN %", false},
    {"IF END #1 THEN %", false},
    {"ON END #2 THEN %", false},
    {"CONVERT A$ TO X,%", false},
    {"ON ERROR THEN %", false},
    {"CHAIN \"self.bas\",@", false},
    {"CHAIN R,\"self.bas\",@", false},
    {"IF X THEN CHAIN \"self.bas\",@", false},
    {"CHAIN \"other.bas\",&", false},
    {"GOTO % ! ^ IN A COMMENT", false},
    {"FIN: GOSUB %", false},
    {"REM GOTO 100 STAYS TEXT", false},
    {"PRINT 100;200", false},
    {"DATA 10,20", false},
    {"IMAGE 3D", false},
    {"GOSUB FIN", false},
    {"GOTO ^+", true},
    {"ON X GOTO ^,,^", true},
};

struct Line {
  uint32_t number;
  const Template* form;     // null for a free line
  std::string free;         // a free line's text: fuzz bytes without digits
  std::vector<int> slots;   // per slot: a line index, or -1 - k for missing number k
  std::vector<char> kinds;  // per slot: its mark in the template
  std::vector<uint32_t> missing;
};

bool IsSlot(char c) { return c == '%' || c == '@' || c == '&' || c == '^'; }

// The line's text with its slots filled by number().
template <typename Number>
std::string Text(const Line& line, Number number) {
  if (!line.form) return line.free;
  std::string text;
  size_t slot = 0;
  for (const char* c = line.form->text; *c; ++c) {
    if (IsSlot(*c))
      text += std::to_string(number(line, slot++));
    else
      text += *c;
  }
  return text;
}

// Stores a line as the shell stores a typed one. A template's line must parse,
// or fail, as its mark says: a template that does not is a mistake here.
void Store(Program& prog, uint32_t number, const Line& line, const std::string& text) {
  SetParseError(0);
  prog.StartLine(text.c_str());
  std::vector<StatementPtr> stored = prog.ParseLine();
  if (g_err.parse == err::kEndOfLine) std::abort();
  SetParseError(0);
  if (line.form && (stored.front()->ParseError() != 0) != line.form->bad) std::abort();
  stored.front()->SetNumber(number);
  prog.InsertTyped(std::move(stored));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::EnterScratchFolder();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 4096) return -1;
  fuzz::UseConsole("");
  Choices in(data, size);

  // The lines, numbered upward from a random start by random gaps.
  std::vector<Line> lines;
  size_t count = 1 + in.Below(40);
  uint32_t number = 0;
  for (size_t i = 0; i < count && number < Program::kMaxNumber; ++i) {
    unsigned gap = in.Byte() < 200 ? 1 + in.Below(20) : 1 + in.Below(100000);
    number = std::min<uint32_t>(number + gap, Program::kMaxNumber);
    if (!lines.empty() && number == lines.back().number) break;
    Line line{number, nullptr, {}, {}, {}, {}};
    unsigned form = in.Below(std::size(kTemplates) + 2);
    if (form < std::size(kTemplates)) {
      line.form = &kTemplates[form];
    } else {
      for (unsigned n = in.Below(30); n > 0; --n) {
        char c = static_cast<char>(32 + in.Below(95));
        if (c < '0' || c > '9') line.free += c;
      }
      // A line with nothing in it would delete, not store: make it a blank line.
      if (line.free.find_first_not_of(' ') == std::string::npos) line.free = ";";
    }
    lines.push_back(std::move(line));
  }
  std::set<uint32_t> used;
  for (const Line& line : lines) used.insert(line.number);
  for (Line& line : lines) {
    if (!line.form) continue;
    for (const char* c = line.form->text; *c; ++c) {
      if (!IsSlot(*c)) continue;
      line.kinds.push_back(*c);
      if (in.Byte() < 192) {
        line.slots.push_back(static_cast<int>(in.Below(static_cast<unsigned>(lines.size()))));
      } else {
        uint32_t missing = 1 + in.Below(Program::kMaxNumber);
        if (in.Byte() & 1) missing = 1 + in.Below(2000);  // near the lines
        if (used.count(missing)) missing = 0;
        line.slots.push_back(missing ? -1 - static_cast<int>(line.missing.size()) : 0);
        if (missing) line.missing.push_back(missing);
      }
    }
  }

  auto oldNumber = [&](const Line& line, size_t slot) {
    int s = line.slots[slot];
    return s >= 0 ? lines[static_cast<size_t>(s)].number
                  : line.missing[static_cast<size_t>(-1 - s)];
  };
  Program prog("self.bas");
  for (const Line& line : lines) Store(prog, line.number, line, Text(line, oldNumber));
  std::string before = SavedText(prog, true);

  RenumberRequest request;
  request.start = 1 + in.Below(in.Byte() < 128 ? 2000 : Program::kMaxNumber);
  request.step = 1 + (in.Byte() < 200 ? in.Below(20) : in.Below(100000));
  if (in.Byte() & 1) {
    request.first = lines[in.Below(static_cast<unsigned>(lines.size()))].number;
    request.last =
        std::max(request.first, lines[in.Below(static_cast<unsigned>(lines.size()))].number);
  }
  RenumberReport report = RenumberLines(prog, request);

  // What RENUMBER must do: the lines in the range, their new numbers, and
  // whether the rules refuse.
  std::map<uint32_t, uint32_t> moved;
  size_t first = lines.size(), last = 0;
  for (size_t i = 0; i < lines.size(); ++i)
    if (lines[i].number >= request.first && lines[i].number <= request.last) {
      first = std::min(first, i);
      last = i;
    }
  bool refuse = first == lines.size();
  std::set<uint32_t> dangling;
  for (const Line& line : lines)
    for (size_t slot = 0; slot < line.slots.size(); ++slot)
      if (line.slots[slot] < 0 && line.kinds[slot] == '%') dangling.insert(oldNumber(line, slot));
  if (!refuse) {
    for (size_t i = first; i <= last; ++i) {
      uint64_t n = request.start + uint64_t{request.step} * (i - first);
      if (n > Program::kMaxNumber || dangling.count(static_cast<uint32_t>(n))) refuse = true;
      moved[lines[i].number] = static_cast<uint32_t>(n);
    }
    if (first > 0 && request.start <= lines[first - 1].number) refuse = true;
    if (last + 1 < lines.size() && !refuse && moved[lines[last].number] >= lines[last + 1].number)
      refuse = true;
  }
  if (refuse != !report.refusal.empty()) std::abort();
  if (refuse) {
    if (SavedText(prog, true) != before) std::abort();
    fuzz::ResetState();
    return 0;
  }

  // The same program written with the new numbers.
  auto newNumber = [&](const Line& line, size_t slot) {
    uint32_t n = oldNumber(line, slot);
    char kind = line.kinds[slot];
    if (kind == '&' || kind == '^' || line.slots[slot] < 0) return n;
    auto it = moved.find(n);
    return it != moved.end() ? it->second : n;
  };
  Program expected("self.bas");
  for (const Line& line : lines) {
    auto it = moved.find(line.number);
    Store(expected, it != moved.end() ? it->second : line.number, line, Text(line, newNumber));
  }
  if (SavedText(prog, true) != SavedText(expected, true)) std::abort();
  fuzz::ResetState();
  return 0;
}
