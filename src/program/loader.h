// Program text files: the reader with its byte rules, the loader and SAVE.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/errors.h"

class Program;

// Reads a program file line by line: tabs to multiples of 4, carriage returns
// and NUL bytes skipped, Ctrl-Z ends the file, a last line without a line feed
// counts, and a UTF-8 byte-order mark at the start is skipped.
// Memory stays bounded: a file past kMaxBytes or kMaxLines, or a line past
// kMaxLineBytes, ends the reading with Limit() set.
class SourceFile {
 public:
  static constexpr uint64_t kMaxBytes = 16 << 20;
  static constexpr unsigned kMaxLines = 999999;  // each line can then have a number
  static constexpr size_t kMaxLineBytes = 65535;

  // GET takes regular files only and never waits to open one; the command line
  // also takes pipes and devices, which its user names on purpose.
  enum class Kind { kRegular, kAny };

  ~SourceFile();
  // GET's way in, shared by every command that reads a program file: the name
  // is found as host::FindFile finds a program. False with Error() set when the
  // file cannot be had (host::kOutside for a name outside the sandbox,
  // host::kAmbiguous for one that two files match), and Note() saying more.
  bool Open(std::string_view name, Kind kind = Kind::kRegular);
  int Error() const { return error_; }
  const std::string& Note() const { return note_; }
  // The next line without its line feed; false at the end of the file or at a limit.
  bool GetLine(std::string& line);
  unsigned LineCount() const { return lines_; }  // line ends read so far
  // 0, or the code of the limit that ended the reading: 6 for a line, 3 for the file.
  ErrorCode Limit() const { return limit_; }

 private:
  int Fill();

  int fd_ = -1;
  int error_ = 0;
  std::string note_;
  char buffer_[2048];
  int pos_ = 0, end_ = 0;
  bool ended_ = false;  // Ctrl-Z, the end of the file, a read error or a limit was met
  unsigned lines_ = 0;
  uint64_t bytes_ = 0;  // bytes taken from the file so far
  ErrorCode limit_ = 0;
};

// Loads an opened file into a new program named name. With report, bad lines
// are announced as they are met.
std::unique_ptr<Program> LoadProgram(SourceFile& file, const std::string& name, bool report);

// The program as SAVE writes it; without numbers only referenced lines keep theirs.
std::string SavedText(const Program& prog, bool numbers);

// How a SAVE went: kOpen is a file that cannot be opened for output, kWrite
// one whose writing failed (a full disk, a size limit), kDataFile a data file,
// which a listing never replaces.
enum class SaveResult { kSaved, kOpen, kWrite, kDataFile };

// Writes the program, printing what went wrong. The old file is replaced only
// once the new one is complete, through a temporary of this save's own;
// symbolic links are followed, devices written in place, other files that are
// not regular refused.
SaveResult SaveProgram(const Program& prog, const std::string& path, bool numbers);

// What a refusal adds to a message, in parentheses: " (outside the sandbox)",
// " (" note ")", or nothing.
std::string RefusalNote(int error, const std::string& note);
