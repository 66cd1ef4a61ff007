#include "shell/loader.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

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

std::unique_ptr<Program> LoadProgram(SourceFile& file, const std::string& name, bool report) {
  auto prog = std::make_unique<Program>(name);
  Console& con = TheConsole();
  uint32_t last = 0;
  std::string text;
  while (file.GetLine(text)) {
    unsigned fileLine = file.LineCount();
    SetParseError(0);
    std::vector<StatementPtr> line;
    uint32_t number = 0;
    if (text.size() > Program::kLineMax) {
      text.resize(Program::kLineMax);
      SetParseError(kLineTooLong);
      line.push_back(std::make_unique<InvalidStmt>(text, kLineTooLong));
    } else {
      prog->StartLine(text.c_str());
      if (prog->GetToken() == tok::kInteger) {
        unsigned long value = std::strtoul(std::string(prog->Text()).c_str(), nullptr, 10);
        if (value < 1 || value > 999999 || prog->Text().size() > 7) {
          SetParseError(kBadStmtNumber);
          line.push_back(std::make_unique<InvalidStmt>(prog->RawAfterCurrent(), kBadStmtNumber));
        } else {
          number = static_cast<uint32_t>(value);
        }
      } else {
        prog->BackUp();
      }
      if (!g_err.parse) {
        if (number > last) {
          last = number;
        } else if (number != 0) {
          con.Printf("%s in file line %u\nUnable to load program.\n", MessageOf(kOutOfOrder),
                     fileLine);
          SetParseError(kOutOfOrder);
          return prog;
        }
        line = prog->ParseLine();
        if (g_err.parse == kEndOfLine) line.push_back(std::make_unique<BlankLineStmt>());
      }
    }
    if (number)
      line.front()->SetNumber(number);
    else
      line.front()->SetFileLine(fileLine);
    prog->Append(std::move(line));
    if (report && g_err.parse > kEndOfLine)
      con.Printf("%s in file line %u\n", MessageOf(g_err.parse), fileLine);
  }
  SetParseError(0);
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
