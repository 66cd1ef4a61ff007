// Program text files: the reader with its byte rules, the loader and SAVE.
#pragma once
#include <memory>
#include <string>

class Program;

// Reads a program file line by line: tabs to multiples of 4, carriage returns
// and NUL bytes skipped, Ctrl-Z ends the file, a last line without a line feed counts.
class SourceFile {
 public:
  ~SourceFile();
  bool Open(const char* path);
  // The next line without its line feed; false at the end of the file.
  bool GetLine(std::string& line);
  unsigned LineCount() const { return lines_; }  // line ends read so far

 private:
  int Fill();

  int fd_ = -1;
  char buffer_[2048];
  int pos_ = 0, end_ = 0;
  bool ended_ = false;  // Ctrl-Z or the end of the file was met
  unsigned lines_ = 0;
};

// Loads an opened file into a new program named name. With report, bad lines
// are announced as they are met.
std::unique_ptr<Program> LoadProgram(SourceFile& file, const std::string& name, bool report);

// Writes the program; 0, or the system's error number after the message. The
// old file is replaced only once the new one is complete.
int SaveProgram(const Program& prog, const std::string& path, bool numbers);
