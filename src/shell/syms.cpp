#include "shell/syms.h"

#include <algorithm>
#include <string>
#include <vector>

#include "console/console.h"
#include "format/number_format.h"
#include "lex/keywords.h"
#include "platform/break_flag.h"
#include "program/program.h"

namespace {

// A number as PRINT writes it, without its blanks; "?" for one never assigned.
void AppendNumber(std::string& out, float value) {
  if (IsUndefined(value)) {
    out += '?';
    return;
  }
  char buffer[kNumberBufferSize];
  int reserve;
  std::string_view text(buffer, FormatNumber(value, buffer, &reserve));
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  out += text;
}

// A string in quotes; control characters show as "." so that none reaches the terminal.
void AppendString(std::string& out, std::string_view text) {
  out += '"';
  for (char c : text) out += static_cast<unsigned char>(c) < 32 || c == 127 ? '.' : c;
  out += '"';
}

struct Line {
  std::string key;  // the name in lower case, then the kind, for the order
  std::string text;
};

std::string Key(const char* name, char kind) {
  std::string key(name);
  for (char& c : key) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  key += '\0';
  key += kind;
  return key;
}

// "A(2,3) = 1 2 3 4 5 6", cut with "..." once it passes limit characters.
template <typename Data, typename Append>
Line ArrayLine(const Data& d, char kind, size_t limit, Append append) {
  Line line{Key(d.name->Name(), kind), d.name->Name()};
  line.text += '(';
  d.dims.List(line.text);
  line.text += ") =";
  for (uint32_t i = 0; i < d.count; ++i) {
    if (line.text.size() > limit) {
      line.text += " ...";
      break;
    }
    line.text += ' ';
    append(line.text, d.elements[i]);
  }
  return line;
}

}  // namespace

void ListVariables(const Program& prog, Console& con) {
  if (!prog.HasRun()) return;
  // A screenful of text: arrays and strings longer than that show their start.
  // Output that is no screen (a pipe, a file) counts as one of 24 lines of 80.
  bool screen = con.Rows() < 1000 && con.Columns() < 1000;
  int rows = screen ? con.Rows() : 24, columns = screen ? con.Columns() : 80;
  size_t limit =
      static_cast<size_t>(std::max(1, rows - 2)) * static_cast<size_t>(std::max(20, columns));
  const VariableStore& vars = prog.variables;
  std::vector<Line> lines;
  for (const auto& d : vars.NumericSimples()) {
    if (!d) continue;
    Line line{Key(d->name->Name(), 'a'), std::string(d->name->Name()) + " = "};
    AppendNumber(line.text, d->value);
    lines.push_back(std::move(line));
  }
  for (const auto& d : vars.StringSimples()) {
    if (!d) continue;
    Line line{Key(d->name->Name(), 'b'), std::string(d->name->Name()) + " = "};
    std::string_view text = d->value.View();
    AppendString(line.text, text.substr(0, limit));
    if (text.size() > limit) line.text += "...";
    lines.push_back(std::move(line));
  }
  for (const auto& d : vars.NumericArrays())
    if (d) lines.push_back(ArrayLine(*d, 'c', limit, AppendNumber));
  for (const auto& d : vars.StringArrays())
    if (d)
      lines.push_back(ArrayLine(*d, 'd', limit, [limit](std::string& out, const StringValue& v) {
        AppendString(out, v.View().substr(0, limit));
      }));
  std::sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) { return a.key < b.key; });
  TestAndClearBreak();
  for (Line& line : lines) {
    if (TestAndClearBreak()) {
      con.Write("\nBREAK\n");
      return;
    }
    line.text += '\n';
    con.Write(line.text);
  }
}
