#include "shell/loader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "console/console.h"
#include "shell/program.h"
#include "stmt/simple_stmts.h"

SourceFile::~SourceFile() {
  if (fd_ >= 0) close(fd_);
}

bool SourceFile::Open(const char* path) {
  fd_ = open(path, O_RDONLY);
  return fd_ >= 0;
}

int SourceFile::Fill() {
  for (;;) {
    ssize_t n = read(fd_, buffer_, sizeof buffer_);
    if (n >= 0) {
      pos_ = 0;
      end_ = static_cast<int>(n);
      return end_;
    }
    if (errno == EINTR) continue;
    TheConsole().Printf("%s in line %u", "File read error", lines_);
    return 0;
  }
}

bool SourceFile::GetLine(std::string& line) {
  line.clear();
  if (ended_) return false;
  size_t column = 0;
  for (;;) {
    if (pos_ >= end_ && Fill() <= 0) break;
    unsigned char c = static_cast<unsigned char>(buffer_[pos_++]);
    if (c == 26) break;  // Ctrl-Z ends the file whatever follows
    if (c == '\r' || c == 0) continue;
    if (c == '\n') {
      ++lines_;
      return true;
    }
    if (c == '\t') {
      do {
        line += ' ';
        ++column;
      } while (column % 4 != 0);
      continue;
    }
    line += static_cast<char>(c);
    ++column;
  }
  ended_ = true;
  if (line.empty()) return false;
  ++lines_;  // the last line had no line feed: it ends here
  return true;
}

namespace {

// The line from offset on, leading blanks dropped.
std::string_view RestFrom(const std::string& text, size_t offset) {
  std::string_view rest(text);
  rest.remove_prefix(std::min(offset, rest.size()));
  while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
  return rest;
}

}  // namespace

std::unique_ptr<Program> LoadProgram(SourceFile& file, const std::string& name, bool report) {
  auto prog = std::make_unique<Program>(name);
  Console& con = TheConsole();
  uint32_t last = 0;
  std::string text, scan;
  while (file.GetLine(text)) {
    unsigned fileLine = file.LineCount();
    // "#!" on the first line makes the file a script the system runs with basic.
    if (fileLine == 1 && text.rfind("#!", 0) == 0) {
      prog->interpreterLine = text;
      continue;
    }
    SetParseError(0);
    std::vector<StatementPtr> line;
    uint32_t number = 0;
    // An overlong line is scanned only for its number; it is kept whole as a bad line.
    bool tooLong = text.size() > Program::kLineMax;
    scan.assign(text, 0, Program::kLineMax);
    prog->StartLine(scan.c_str());
    size_t afterNumber = 0;
    if (prog->GetToken() == tok::kInteger) {
      std::string_view digits = prog->Text();
      if (digits.size() <= 7)
        number = static_cast<uint32_t>(std::strtoul(std::string(digits).c_str(), nullptr, 10));
      if (number < 1 || number > 999999) {
        number = 0;
        SetParseError(err::kBadStmtNumber);
        line.push_back(std::make_unique<InvalidStmt>(RestFrom(text, 0), err::kBadStmtNumber));
      } else {
        afterNumber = prog->Current().rawEnd;
      }
    } else {
      prog->BackUp();
    }
    if (!g_err.parse) {
      if (number > last) {
        last = number;
      } else if (number != 0) {
        con.Printf("%s in file line %u\nUnable to load program.\n", MessageOf(err::kOutOfOrder),
                   fileLine);
        SetParseError(err::kOutOfOrder);
        break;
      }
      if (tooLong) {
        SetParseError(err::kLineTooLong);
        line.push_back(
            std::make_unique<InvalidStmt>(RestFrom(text, afterNumber), err::kLineTooLong));
      } else {
        line = prog->ParseLine();
        if (g_err.parse == err::kEndOfLine) line.push_back(std::make_unique<BlankLineStmt>());
      }
    }
    if (number)
      line.front()->SetNumber(number);
    else
      line.front()->SetFileLine(fileLine);
    prog->Append(std::move(line));
    if (report && g_err.parse > err::kEndOfLine)
      con.Printf("%s in file line %u\n", MessageOf(g_err.parse), fileLine);
  }
  prog->StartLine("");  // the line buffer goes away with this frame
  if (g_err.parse != err::kOutOfOrder) SetParseError(0);
  return prog;
}

int SaveProgram(const Program& prog, const std::string& path, bool numbers) {
  std::string temp = path + ".saving~";
  FILE* out = std::fopen(temp.c_str(), "w");
  if (!out) {
    int error = errno;
    TheConsole().Printf("Cannot open %s for output.\n", path.c_str());
    return error;
  }
  std::string text;
  if (!prog.interpreterLine.empty()) text = prog.interpreterLine + '\n';
  int depth = 0;
  for (const Statement* s = prog.First(); s; s = s->Next()) {
    if (s->Hidden()) continue;
    bool withNumber = numbers || prog.FindTarget(s->Number()) != nullptr;
    depth = prog.ListLine(text, s, 0, depth, withNumber);
    text += '\n';
  }
  bool ok = std::fwrite(text.data(), 1, text.size(), out) == text.size();
  ok = std::fflush(out) == 0 && ok;
  ok = fsync(fileno(out)) == 0 && ok;
  ok = std::fclose(out) == 0 && ok;
  if (!ok || std::rename(temp.c_str(), path.c_str()) != 0) {
    int error = errno ? errno : EIO;
    std::remove(temp.c_str());
    TheConsole().Printf("Cannot open %s for output.\n", path.c_str());
    return error;
  }
  return 0;
}
