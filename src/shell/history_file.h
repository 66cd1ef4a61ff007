// The shell's lines kept across sessions: one line per typed shell line, the newest
// last. Each line is appended with one write, under a shared lock, so sessions
// never lose each other's lines; once the file holds twice LineHistory::kMaxLines,
// one session cuts it back to the newest kMaxLines under the exclusive lock. Every
// failure is silent: history is a convenience and never stops the shell.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class HistoryFile final {
 public:
  // The file to use: $BASIC_HISTORY when set (set but empty: none), else
  // $XDG_STATE_HOME/basic/history, else ~/.local/state/basic/history.
  static std::string DefaultPath();

  explicit HistoryFile(std::string path) : path_(std::move(path)) {}
  // The newest lines of the file, oldest first.
  std::vector<std::string> Load();
  // Adds a line at the end; the file is cut back to its newest lines when it grows too long.
  void Append(std::string_view line);

 private:
  void Compact();

  std::string path_;
  size_t lines_ = 0;  // lines in the file, as far as this session knows
  std::string last_;  // the newest line; a repeat is not written again
};

// The lines of a history file's bytes, newest last and at most max of them; a line
// is cut to the length the line reader takes. With partial, the first line is a
// fragment (the bytes began mid-file) and is dropped.
std::vector<std::string> HistoryLines(std::string_view bytes, bool partial, size_t max);
