#include "shell/history_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <deque>

#include "console/console.h"
#include "console/line_history.h"
#include "platform/host_files.h"

namespace {

constexpr size_t kMaxLines = LineHistory::kMaxLines;
// The file is cut back when it holds this many lines: rarely, so that typing a
// line costs one write.
constexpr size_t kCompactAt = 2 * kMaxLines;
// Enough of the file's end for kMaxLines of the longest lines.
constexpr off_t kReadLimit = static_cast<off_t>(kMaxLines) * (Console::kLineMax + 1);

// Creates each missing folder of path's parent, private to the user.
void MakeParents(const std::string& path) {
  for (size_t slash = path.find('/', 1); slash != std::string::npos;
       slash = path.find('/', slash + 1))
    mkdir(path.substr(0, slash).c_str(), 0700);
}

// The last kReadLimit bytes of the file; partial tells whether that cut the file.
bool ReadTail(int fd, std::string* bytes, bool* partial) {
  struct stat st;
  bool ok = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  *partial = ok && st.st_size > kReadLimit;
  off_t at = *partial ? st.st_size - kReadLimit : 0;
  char buffer[8192];
  while (ok && bytes->size() < static_cast<size_t>(kReadLimit)) {
    ssize_t n = pread(fd, buffer, sizeof buffer, at);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    bytes->append(buffer, static_cast<size_t>(n));
    at += n;
  }
  return ok;
}

// The history file, opened (and created) as a regular file; -1 when it is none.
int OpenHistory(const host::Place& place, int flags) {
  int fd = place.Open(flags | O_NONBLOCK, 0600);
  struct stat st;
  if (fd >= 0 && (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode))) {
    close(fd);
    fd = -1;
  }
  return fd;
}

// True when the descriptor's file was replaced by a compaction since it was opened.
bool Replaced(int fd) {
  struct stat st;
  return fstat(fd, &st) != 0 || st.st_nlink == 0;
}

// The temporaries "NAME.<pid>~" that rewrites of old left when their process died.
void RemoveOldTemporaries(const host::Place& place) {
  int fd = openat(place.Folder(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* dir = fd >= 0 ? fdopendir(fd) : nullptr;
  if (!dir) {
    if (fd >= 0) close(fd);
    return;
  }
  const std::string prefix = place.Name() + ".";
  while (const dirent* entry = readdir(dir)) {
    std::string_view name(entry->d_name);
    if (name.size() < prefix.size() + 2 || name.compare(0, prefix.size(), prefix) != 0 ||
        name.back() != '~')
      continue;
    std::string_view digits = name.substr(prefix.size(), name.size() - prefix.size() - 1);
    if (digits.size() > 9 || digits.find_first_not_of("0123456789") != std::string_view::npos)
      continue;
    pid_t pid = static_cast<pid_t>(std::strtol(std::string(digits).c_str(), nullptr, 10));
    if (kill(pid, 0) != 0 && errno == ESRCH) unlinkat(fd, entry->d_name, 0);
  }
  closedir(dir);
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
  host::Place place;
  if (path_.empty() || place.Resolve(path_) != 0) return {};
  int fd = OpenHistory(place, O_RDONLY);
  bool ok = fd >= 0 && ReadTail(fd, &bytes, &partial);
  if (fd >= 0) close(fd);
  if (!ok) return {};
  // Lines beyond the newest ones are counted, so that Append cuts them in time.
  lines_ = 0;
  for (char c : bytes) lines_ += c == '\n';
  if (partial) lines_ = kCompactAt;
  std::vector<std::string> lines = HistoryLines(bytes, partial, kMaxLines);
  if (!lines.empty()) last_ = lines.back();
  return lines;
}

void HistoryFile::Append(std::string_view line) {
  if (path_.empty() || line.empty() || line == last_) return;
  last_.assign(line);
  // Within a sandbox no folder is made: one outside it would be made before it is refused.
  if (!host::Sandboxed()) MakeParents(path_);
  std::string text(line);
  text += '\n';
  for (int attempt = 0; attempt < 3; ++attempt) {
    host::Place place;
    if (place.Resolve(path_) != 0) return;
    int fd = OpenHistory(place, O_WRONLY | O_APPEND | O_CREAT);
    if (fd < 0) return;
    // A compaction holds the lock while it replaces the file: the line waits,
    // then goes into the new file.
    if (host::LockWhole(fd, false) != host::LockWait::kLocked || Replaced(fd)) {
      close(fd);
      continue;
    }
    bool ok = host::WriteAllAt(fd, text.data(), text.size(), -1) == 0;  // one write
    close(fd);
    if (ok && ++lines_ > kCompactAt) Compact();
    return;
  }
}

// Rewrites the file with its newest lines: a new file beside it, renamed over it
// once complete, all under the exclusive lock, so that no session's line falls
// between the reading and the rename.
void HistoryFile::Compact() {
  host::Place place;
  if (place.Resolve(path_) != 0) return;
  int fd = OpenHistory(place, O_RDONLY);
  if (fd < 0) return;
  std::string bytes;
  bool partial = false;
  if (host::LockWhole(fd, true) == host::LockWait::kLocked && !Replaced(fd) &&
      ReadTail(fd, &bytes, &partial)) {
    size_t count = 0;
    for (char c : bytes) count += c == '\n';
    std::vector<std::string> lines = HistoryLines(bytes, partial, kMaxLines);
    if (!partial && count <= kMaxLines) {
      lines_ = count;  // another session cut it back already
    } else {
      std::string text;
      for (const std::string& kept : lines) {
        text += kept;
        text += '\n';
      }
      host::TempFile temp(place);
      struct stat st;
      if (temp.Create(0600) == 0 && fstat(fd, &st) == 0 &&
          fchmod(temp.Descriptor(), st.st_mode & 0777) == 0 &&
          host::WriteAllAt(temp.Descriptor(), text.data(), text.size(), 0) == 0 &&
          fsync(temp.Descriptor()) == 0 && temp.ReplaceTarget() == 0)
        lines_ = lines.size();
      RemoveOldTemporaries(place);
    }
  }
  close(fd);
}
