#include "program/loader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/dialect.h"
#include "console/console.h"
#include "files/data_file.h"
#include "lex/keywords.h"
#include "platform/break_flag.h"
#include "platform/host_files.h"
#include "program/program.h"
#include "stmt/simple_stmts.h"

namespace {
constexpr char kByteOrderMark[3] = {'\xEF', '\xBB', '\xBF'};
}  // namespace

SourceFile::~SourceFile() {
  if (fd_ >= 0) close(fd_);
}

bool SourceFile::Open(std::string_view name, Kind kind) {
  // Without O_NONBLOCK, opening a FIFO would wait for a writer.
  int flags = O_RDONLY | (kind == Kind::kRegular ? O_NONBLOCK : 0);
  std::string path;
  error_ = host::FindFile(name, host::FileKind::kProgram, &path, &note_);
  if (error_) return false;
  fd_ = host::OpenHostFile(path, flags);
  if (fd_ < 0) {
    error_ = errno;
    return false;
  }
  struct stat st;
  bool ok = fstat(fd_, &st) == 0 && !S_ISDIR(st.st_mode);
  if (ok && kind == Kind::kRegular) ok = S_ISREG(st.st_mode);
  if (!ok) {
    close(fd_);
    fd_ = -1;
    error_ = EISDIR;
  }
  return ok;
}

int SourceFile::Fill() {
  for (;;) {
    ssize_t n = read(fd_, buffer_, sizeof buffer_);
    if (n >= 0) {
      pos_ = 0;
      end_ = static_cast<int>(n);
      return end_;
    }
    if (errno == EINTR && !EndPending()) continue;
    if (errno == EINTR) return 0;
    // The rest of the file cannot be had: what was read is the program.
    TheConsole().Printf("%s in line %u\n", "File read error", lines_);
    return 0;
  }
}

bool SourceFile::GetLine(std::string& line) {
  line.clear();
  if (ended_) return false;
  size_t column = 0, lineBytes = 0;
  for (;;) {
    if (pos_ >= end_ && Fill() <= 0) break;
    if (++bytes_ > kMaxBytes || ++lineBytes > kMaxLineBytes || lines_ >= kMaxLines) {
      limit_ = lineBytes > kMaxLineBytes ? err::kLineTooLong : err::kNoMemory;
      ended_ = true;
      return false;
    }
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
    // A UTF-8 byte-order mark, as some editors begin a file with, is no text.
    if (bytes_ == 3 && line == std::string_view(kByteOrderMark, 3)) {
      line.clear();
      column = lineBytes = 0;
    }
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

// TAPE or KEY alone on a line: the paper-tape reader's switches, punched into
// old listings between their lines.
bool IsTapeSwitch(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return SameName(text, "TAPE") || SameName(text, "KEY");
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
    if (g_classic && IsTapeSwitch(text)) continue;
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
    // Under the classic switch a file is read as if typed: a line may go back,
    // and one of a number already read replaces that line.
    bool typed = false;
    if (!g_err.parse) {
      if (number > last) {
        last = number;
      } else if (number != 0 && g_classic) {
        typed = true;
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
    if (typed)
      prog->InsertTyped(std::move(line));
    else
      prog->Append(std::move(line));
    if (report && g_err.parse > err::kEndOfLine)
      con.Printf("%s in file line %u\n", MessageOf(g_err.parse), fileLine);
  }
  prog->StartLine("");  // the line buffer goes away with this frame
  if (ErrorCode limit = file.Limit(); limit && g_err.parse != err::kOutOfOrder) {
    con.Printf("%s in file line %u\nUnable to load program.\n", MessageOf(limit),
               file.LineCount() + 1);
    SetParseError(limit);
    return prog;
  }
  if (g_err.parse != err::kOutOfOrder) SetParseError(0);
  return prog;
}

namespace {

bool WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    ssize_t w = write(fd, text.data(), text.size());
    if (w < 0 && errno == EINTR && !EndPending()) continue;
    if (w <= 0) return false;
    text.remove_prefix(static_cast<size_t>(w));
  }
  return true;
}

// A device is written where it is, as an output opened on it would be.
SaveResult WriteInPlace(const host::Place& place, std::string_view text, int* error) {
  int fd = place.Open(O_WRONLY | O_NOCTTY);
  if (fd < 0) {
    *error = errno;
    return SaveResult::kOpen;
  }
  bool ok = WriteAll(fd, text);
  *error = ok ? 0 : (errno ? errno : EIO);
  if (close(fd) != 0 && ok) *error = errno;
  return *error ? SaveResult::kWrite : SaveResult::kSaved;
}

// A regular file is written under a temporary name of this save's own beside
// the target and renamed over it once complete, so that two sessions saving
// one name each leave a whole program; the new file keeps the old one's owner
// and permission bits.
SaveResult WriteAndRename(const host::Place& place, const struct stat* old, std::string_view text,
                          int* error) {
  host::TempFile temp(place);
  if ((*error = temp.Create(0666))) return SaveResult::kOpen;
  int fd = temp.Descriptor();
  if (old) {
    // Only root may hand the file to another owner; for anyone else it stays theirs.
    (void)!fchown(fd, old->st_uid, old->st_gid);
    (void)!fchmod(fd, old->st_mode & 07777);
  }
  if (!WriteAll(fd, text) || fsync(fd) != 0) {
    *error = errno ? errno : EIO;
    return SaveResult::kWrite;
  }
  *error = temp.ReplaceTarget();
  return *error ? SaveResult::kOpen : SaveResult::kSaved;
}

// The target must take output as an open for writing would (the rename alone
// would ignore its permissions), and must not be a data file.
SaveResult CheckTarget(const host::Place& place, int* error) {
  int fd = place.Open(O_WRONLY | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) {
    *error = errno;
    return SaveResult::kOpen;
  }
  close(fd);
  fd = place.Open(O_RDONLY | O_NONBLOCK);
  uint32_t words, records;
  bool data = fd >= 0 && ReadDataHeader(fd, &words, &records) != OpenStatus::kNotData;
  if (fd >= 0) close(fd);
  return data ? SaveResult::kDataFile : SaveResult::kSaved;
}

}  // namespace

std::string RefusalNote(int error, const std::string& note) {
  if (error == host::kOutside) return " (outside the sandbox)";
  return note.empty() ? "" : " (" + note + ")";
}

std::string SavedText(const Program& prog, bool numbers) {
  std::string text;
  if (!prog.interpreterLine.empty()) text = prog.interpreterLine + '\n';
  int depth = 0;
  for (const Statement* s = prog.First(); s; s = s->Next()) {
    if (s->Hidden()) continue;
    bool withNumber = numbers || prog.FindTarget(s->Number()) != nullptr;
    size_t start = text.size();
    depth = prog.ListLine(text, s, 0, depth, withNumber);
    // A bad line is written as it was typed, without the "?" that LIST shows,
    // so that every SAVE and GET gives back the same line.
    if (s->ParseError()) text.erase(text.find('?', start), 1);
    text += '\n';
  }
  return text;
}

SaveResult SaveProgram(const Program& prog, const std::string& name, bool numbers) {
  std::string text = SavedText(prog, numbers), path, note;
  host::Place place;
  int error = host::HostPath(name, &path, &note);
  if (!error) error = place.Resolve(path);
  struct stat st;
  SaveResult result = SaveResult::kOpen;
  if (error) {
    // the folder cannot be had, or lies outside the sandbox
  } else if ((error = place.Stat(&st)) == ENOENT) {
    result = WriteAndRename(place, nullptr, text, &error);
  } else if (error) {
    // refused as it stands
  } else if (S_ISCHR(st.st_mode)) {
    result = WriteInPlace(place, text, &error);
  } else if (!S_ISREG(st.st_mode)) {
    error = S_ISDIR(st.st_mode) ? EISDIR : EINVAL;  // a folder, FIFO or disk is never replaced
  } else if ((result = CheckTarget(place, &error)) == SaveResult::kSaved) {
    result = WriteAndRename(place, &st, text, &error);
  }
  Console& con = TheConsole();
  if (result == SaveResult::kOpen)
    con.Printf("Cannot open %s for output%s.\n", name.c_str(), RefusalNote(error, note).c_str());
  else if (result == SaveResult::kWrite)
    con.Printf("Cannot write %s: %s.\n", name.c_str(), std::strerror(error));
  else if (result == SaveResult::kDataFile)
    con.Printf("%s is a data file: a program is not saved over it.\n", name.c_str());
  return result;
}
