#include "platform/host_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "platform/break_flag.h"
#include "platform/signals.h"

namespace host {
namespace {

// The folders of the sandbox, by identity; empty when there is none.
struct Root {
  dev_t device;
  ino_t inode;
};
std::vector<Root> g_roots;
bool g_sandboxed = false;

constexpr int kMaxLinks = 40;      // symbolic links followed in one name, as the system allows
constexpr int kMaxDepth = 4096;    // folders climbed looking for the sandbox
constexpr time_t kStaleAfter = 2;  // seconds: a younger temporary may be one just made

bool IsRoot(const struct stat& st) {
  for (const Root& r : g_roots)
    if (r.device == st.st_dev && r.inode == st.st_ino) return true;
  return false;
}

// True when an opened folder is a sandbox folder or lies below one: its
// parents are climbed by "..", so that the folder reached, not its name, decides.
bool Inside(int folder) {
  int current = fcntl(folder, F_DUPFD_CLOEXEC, 0);
  if (current < 0) return false;
  struct stat st;
  bool inside = false;
  for (int depth = 0; depth < kMaxDepth && fstat(current, &st) == 0; ++depth) {
    if (IsRoot(st)) {
      inside = true;
      break;
    }
    int parent = openat(current, "..", O_PATH | O_DIRECTORY | O_CLOEXEC);
    struct stat up;
    if (parent < 0 || fstat(parent, &up) != 0 ||
        (up.st_dev == st.st_dev && up.st_ino == st.st_ino)) {  // the top of the tree
      if (parent >= 0) close(parent);
      break;
    }
    close(current);
    current = parent;
  }
  close(current);
  return inside;
}

void SplitLast(const std::string& path, std::string* folder, std::string* name) {
  size_t end = path.size();
  while (end > 1 && path[end - 1] == '/') --end;  // "dir/" names dir
  size_t slash = path.rfind('/', end - 1);
  if (slash == std::string::npos) {
    *folder = ".";
    *name = path.substr(0, end);
  } else {
    *folder = slash == 0 ? "/" : path.substr(0, slash);
    *name = path.substr(slash + 1, end - slash - 1);
  }
  if (name->empty()) *name = ".";  // the root itself
}

// A name for a temporary of target: hidden, unique to this process and call.
std::string TempName(const std::string& prefix) {
  static unsigned counter = 0;
  uint64_t mix =
      static_cast<uint64_t>(getpid()) * 0x9E3779B97F4A7C15ull ^
      static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
      (uint64_t{++counter} << 40);
  char suffix[8];
  static constexpr char kDigits[] = "0123456789abcdefghijklmnopqrstuv";
  for (int i = 0; i < 6; ++i, mix >>= 5) suffix[i] = kDigits[mix & 31];
  suffix[6] = '~';
  suffix[7] = 0;
  return prefix + suffix;
}

// ".NAME." with NAME cut so that a temporary's name stays within NAME_MAX.
std::string TempPrefix(const std::string& name) {
  return "." + name.substr(0, NAME_MAX - 16) + ".";
}

// The folder a library prefix names ("$" the system's, "*" the group's), or
// null when its variable is unset or empty: the working folder.
const char* LibraryFolder(char prefix) {
  const char* folder = std::getenv(prefix == '$' ? "BASIC_LIB" : "BASIC_GROUP");
  return folder && *folder ? folder : nullptr;
}

// The files of an opened folder other than folders whose names are name, or
// also name + ".bas", once case is ignored; sorted.
std::vector<std::string> CaseMatches(int folder, const std::string& name, bool program) {
  std::vector<std::string> found;
  int fd = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return found;
  DIR* dir = fdopendir(fd);
  if (!dir) {
    close(fd);
    return found;
  }
  std::string withBas = name + ".bas";
  while (const dirent* entry = readdir(dir)) {
    if (strcasecmp(entry->d_name, name.c_str()) != 0 &&
        !(program && strcasecmp(entry->d_name, withBas.c_str()) == 0))
      continue;
    struct stat st;
    if (fstatat(fd, entry->d_name, &st, 0) == 0 && S_ISDIR(st.st_mode)) continue;
    found.emplace_back(entry->d_name);
  }
  closedir(dir);
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

int SetSandbox(const std::string& folder) {
  g_roots.clear();
  g_sandboxed = true;  // even when the folder fails: nothing may be reached then
  int error = AddSandboxRoot(folder);
  // The libraries' files are the system's own: a folder that does not exist
  // is reported when a name uses it.
  for (char prefix : {'$', '*'})
    if (const char* library = LibraryFolder(prefix)) AddSandboxRoot(library);
  return error;
}

int AddSandboxRoot(const std::string& folder) {
  int fd = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return errno;
  struct stat st;
  int error = fstat(fd, &st) == 0 ? 0 : errno;
  close(fd);
  if (!error) g_roots.push_back({st.st_dev, st.st_ino});
  return error;
}

bool Sandboxed() { return g_sandboxed; }

int HostPath(std::string_view name, std::string* path, std::string* note) {
  if (note) note->clear();
  if (name.find('\0') != std::string_view::npos) return EINVAL;
  char prefix = name.empty() ? 0 : name[0];
  if (prefix != '$' && prefix != '*') {
    path->assign(name);
    return 0;
  }
  name.remove_prefix(1);
  const char* folder = LibraryFolder(prefix);
  if (!folder) {
    path->assign(name);
    return 0;
  }
  struct stat st;
  if (stat(folder, &st) != 0 || !S_ISDIR(st.st_mode)) {
    if (note) {
      *note = prefix == '$' ? "system library " : "group library ";
      *note += folder;
      *note += " not found";
    }
    return ENOENT;
  }
  path->assign(folder);
  if (path->back() != '/') *path += '/';
  *path += name;
  return 0;
}

int FindFile(std::string_view name, FileKind kind, std::string* path, std::string* note) {
  if (int error = HostPath(name, path, note)) return error;
  struct stat st;
  // Without a sandbox the path itself decides, so that /dev/stdin is found.
  if (path->empty() || path->back() == '/' || (!g_sandboxed && stat(path->c_str(), &st) == 0))
    return 0;
  std::string folder, last;
  SplitLast(*path, &folder, &last);
  Place place;
  int error = place.Resolve(*path);
  if (error == kOutside) return error;
  // A folder that cannot be had, a file that is there, or a link to nothing:
  // the open tells which.
  if (error || place.Stat(&st) == 0 || place.Name() != last) return 0;
  bool program = kind == FileKind::kProgram;
  std::string withBas = last + ".bas";
  if (program && fstatat(place.Folder(), withBas.c_str(), &st, 0) == 0) {
    *path += ".bas";
    return 0;
  }
  std::vector<std::string> found = CaseMatches(place.Folder(), last, program);
  if (found.size() > 1) {
    if (note) *note = "both " + found[0] + " and " + found[1] + " match";
    return kAmbiguous;
  }
  if (found.size() == 1) path->replace(path->size() - last.size(), last.size(), found[0]);
  return 0;
}

Place::Place(Place&& other) noexcept : folder_(other.folder_), name_(std::move(other.name_)) {
  other.folder_ = -1;
}

Place& Place::operator=(Place&& other) noexcept {
  if (this != &other) {
    Reset();
    folder_ = other.folder_;
    name_ = std::move(other.name_);
    other.folder_ = -1;
  }
  return *this;
}

Place::~Place() { Reset(); }

void Place::Reset() {
  if (folder_ >= 0) close(folder_);
  folder_ = -1;
  name_.clear();
}

int Place::Resolve(const std::string& path) {
  Reset();
  if (path.empty()) return ENOENT;
  std::string rest = path, folder, name;
  int base = AT_FDCWD;  // where a relative rest starts: a link's own folder
  for (int links = 0; links <= kMaxLinks; ++links) {
    SplitLast(rest, &folder, &name);
    int fd = openat(base, folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    int error = errno;
    if (base != AT_FDCWD) close(base);
    if (fd < 0) return error;
    if (name == "." || name == "..") {
      // The path names a folder: the place is that folder itself.
      int self = openat(fd, name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
      error = errno;
      close(fd);
      if (self < 0) return error;
      fd = self;
      name = ".";
    }
    if (g_sandboxed && !Inside(fd)) {
      close(fd);
      return kOutside;
    }
    struct stat st;
    if (name == "." || fstatat(fd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0 ||
        !S_ISLNK(st.st_mode)) {
      folder_ = fd;
      name_ = name;
      return 0;
    }
    char target[PATH_MAX];
    ssize_t n = readlinkat(fd, name.c_str(), target, sizeof target);
    if (n <= 0 || n >= static_cast<ssize_t>(sizeof target)) {
      error = n < 0 ? errno : ENAMETOOLONG;
      close(fd);
      return error;
    }
    rest.assign(target, static_cast<size_t>(n));
    if (rest[0] == '/') {
      close(fd);
      base = AT_FDCWD;
    } else {
      base = fd;
    }
  }
  return ELOOP;
}

int Place::Open(int flags, mode_t mode) const {
  return openat(folder_, name_.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, mode);
}

int Place::Stat(struct stat* st) const {
  return fstatat(folder_, name_.c_str(), st, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

int Place::Remove() const { return unlinkat(folder_, name_.c_str(), 0) == 0 ? 0 : errno; }

Place Place::Sibling(std::string_view suffix) const {
  Place sibling;
  sibling.folder_ = folder_ >= 0 ? fcntl(folder_, F_DUPFD_CLOEXEC, 0) : -1;
  sibling.name_ = name_;
  sibling.name_ += suffix;
  return sibling;
}

int OpenHostFile(const std::string& path, int flags) {
  if (!g_sandboxed) return open(path.c_str(), flags | O_CLOEXEC);
  Place place;
  if (int error = place.Resolve(path)) {
    errno = error;
    return -1;
  }
  return place.Open(flags);
}

TempFile::~TempFile() {
  if (!name_.empty()) unlinkat(target_.Folder(), name_.c_str(), 0);
  if (fd_ >= 0) close(fd_);
}

int TempFile::Create(mode_t mode) {
  RemoveStale();
  std::string prefix = TempPrefix(target_.Name());
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::string name = TempName(prefix);
    fd_ = openat(target_.Folder(), name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                 mode);
    if (fd_ >= 0) {
      name_ = name;
      flock(fd_, LOCK_EX | LOCK_NB);  // held while this process lives
      return 0;
    }
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

int TempFile::ReplaceTarget() {
  if (renameat(target_.Folder(), name_.c_str(), target_.Folder(), target_.Name().c_str()) != 0)
    return errno;
  name_.clear();
  return 0;
}

int TempFile::LinkAsTarget() {
  int folder = target_.Folder();
  const char* target = target_.Name().c_str();
#ifdef RENAME_NOREPLACE
  if (renameat2(folder, name_.c_str(), folder, target, RENAME_NOREPLACE) == 0) {
    name_.clear();
    return 0;
  }
  if (errno != EINVAL && errno != ENOSYS) return errno;
#endif
  // A file system without that rename: a hard link is made only where none exists.
  if (linkat(folder, name_.c_str(), folder, target, 0) == 0)
    return 0;  // the destructor removes the temporary name
  if (errno != EPERM && errno != ENOSYS && errno != EOPNOTSUPP) return errno;
  // Nor hard links (a browser's files, where one process runs): look, then rename.
  struct stat st;
  if (fstatat(folder, target, &st, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  return ReplaceTarget();
}

// Temporaries of the same target that no process holds any more, and that are
// old enough not to be one being made right now.
void TempFile::RemoveStale() const {
  int fd = openat(target_.Folder(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  DIR* dir = fdopendir(fd);
  if (!dir) {
    close(fd);
    return;
  }
  std::string prefix = TempPrefix(target_.Name());
  size_t length = prefix.size() + 7;
  time_t now = time(nullptr);
  while (const dirent* entry = readdir(dir)) {
    std::string_view name(entry->d_name);
    if (name.size() != length || name.compare(0, prefix.size(), prefix) != 0 || name.back() != '~')
      continue;
    int temp = openat(fd, entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (temp < 0) continue;
    struct stat st;
    if (fstat(temp, &st) == 0 && S_ISREG(st.st_mode) && now - st.st_mtime >= kStaleAfter &&
        flock(temp, LOCK_EX | LOCK_NB) == 0)
      unlinkat(fd, entry->d_name, 0);
    close(temp);
  }
  closedir(dir);
}

LockWait LockWhole(int fd, bool exclusive) {
  int operation = exclusive ? LOCK_EX : LOCK_SH;
  if (flock(fd, operation | LOCK_NB) == 0) return LockWait::kLocked;
  if (errno != EWOULDBLOCK) return LockWait::kFailed;
  FlushOutput();  // what was printed before the wait is seen during it
  BreakableWait breakable;
  for (;;) {
    if (StopPending()) return LockWait::kStopped;
    if (flock(fd, operation) == 0) return LockWait::kLocked;
    if (errno != EINTR) return LockWait::kFailed;
  }
}

bool TryLockWhole(int fd, bool exclusive) {
  return flock(fd, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0;
}

void UnlockWhole(int fd) { flock(fd, LOCK_UN); }

int WriteAllAt(int fd, const void* from, size_t count, off_t offset) {
  auto bytes = static_cast<const char*>(from);
  while (count > 0) {
    ssize_t n = offset < 0 ? write(fd, bytes, count) : pwrite(fd, bytes, count, offset);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return n < 0 ? errno : EIO;
    bytes += n;
    count -= static_cast<size_t>(n);
    if (offset >= 0) offset += n;
  }
  return 0;
}

int ReadAllAt(int fd, void* to, size_t count, off_t offset) {
  auto bytes = static_cast<char*>(to);
  while (count > 0) {
    ssize_t n = pread(fd, bytes, count, offset);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return n < 0 ? errno : EIO;
    bytes += n;
    count -= static_cast<size_t>(n);
    offset += n;
  }
  return 0;
}

}  // namespace host
