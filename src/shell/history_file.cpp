#include "shell/history_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <deque>

#include "console/console.h"
#include "console/line_history.h"

namespace {

constexpr size_t kMaxLines = LineHistory::kMaxLines;
// Enough of the file's end for kMaxLines of the longest lines.
constexpr off_t kReadLimit = static_cast<off_t>(kMaxLines) * (Console::kLineMax + 1);

// Creates each missing folder of path's parent, private to the user.
void MakeParents(const std::string& path) {
  for (size_t slash = path.find('/', 1); slash != std::string::npos;
       slash = path.find('/', slash + 1))
    mkdir(path.substr(0, slash).c_str(), 0700);
}

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t n = write(fd, bytes.data(), bytes.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(n));
  }
  return true;
}

// The last kReadLimit bytes of the file; partial tells whether that cut the file.
bool ReadTail(const std::string& path, std::string* bytes, bool* partial) {
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return false;
  struct stat st;
  bool ok = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  *partial = ok && st.st_size > kReadLimit;
  if (*partial && lseek(fd, st.st_size - kReadLimit, SEEK_SET) < 0) ok = false;
  char buffer[8192];
  while (ok && bytes->size() < static_cast<size_t>(kReadLimit)) {
    ssize_t n = read(fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    bytes->append(buffer, static_cast<size_t>(n));
  }
  close(fd);
  return ok;
}

}  // namespace

std::vector<std::string> HistoryLines(std::string_view bytes, bool partial, size_t max) {
  std::deque<std::string_view> kept;
  if (max == 0) return {};
  while (!bytes.empty()) {
    size_t end = bytes.find('\n');
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    if (partial) {
      partial = false;
      continue;
    }
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty()) continue;
    if (kept.size() == max) kept.pop_front();
    kept.push_back(line.substr(0, Console::kLineMax));
  }
  return {kept.begin(), kept.end()};
}

std::string HistoryFile::DefaultPath() {
  if (const char* path = std::getenv("BASIC_HISTORY")) return path;
  std::string base;
  if (const char* state = std::getenv("XDG_STATE_HOME"); state && state[0] == '/')
    base = state;
  else if (const char* home = std::getenv("HOME"); home && home[0] == '/')
    base = std::string(home) + "/.local/state";
  else
    return "";
  return base + "/basic/history";
}

std::vector<std::string> HistoryFile::Load() {
  std::string bytes;
  bool partial = false;
  if (path_.empty() || !ReadTail(path_, &bytes, &partial)) return {};
  // Lines beyond the newest ones are counted, so that the next Append cuts them.
  lines_ = 0;
  for (char c : bytes) lines_ += c == '\n';
  if (partial) lines_ = kMaxLines + 1;
  std::vector<std::string> lines = HistoryLines(bytes, partial, kMaxLines);
  if (!lines.empty()) last_ = lines.back();
  return lines;
}

void HistoryFile::Append(std::string_view line) {
  if (path_.empty() || line.empty() || line == last_) return;
  last_.assign(line);
  MakeParents(path_);
  int fd = open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
  if (fd < 0) return;
  struct stat st;
  // Only a regular file is written: a FIFO or device named by mistake is left alone.
  bool ok = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  std::string text(line);
  text += '\n';
  ok = ok && WriteAll(fd, text);  // one write: lines of two sessions do not mix
  close(fd);
  if (ok && ++lines_ > kMaxLines) Trim();
}

// Rewrites the file with its newest lines: a new file beside it, renamed over it once
// complete, so that a failure leaves the old one.
void HistoryFile::Trim() {
  std::string bytes;
  bool partial = false;
  if (!ReadTail(path_, &bytes, &partial)) return;
  std::vector<std::string> lines = HistoryLines(bytes, partial, kMaxLines);
  std::string text;
  for (const std::string& line : lines) {
    text += line;
    text += '\n';
  }
  // A symbolic link stays: the file it names is replaced.
  char* real = realpath(path_.c_str(), nullptr);
  std::string target = real ? real : path_;
  std::free(real);
  std::string temp = target + "." + std::to_string(getpid()) + "~";
  int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd < 0) return;
  bool ok = WriteAll(fd, text) && fsync(fd) == 0;
  ok = close(fd) == 0 && ok;
  if (ok && rename(temp.c_str(), target.c_str()) == 0)
    lines_ = lines.size();
  else
    unlink(temp.c_str());
}
