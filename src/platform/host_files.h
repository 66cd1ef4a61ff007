// Host files as every part of the interpreter reaches them: program files,
// data files, picture files and the history file. A name a user gives becomes
// a host path (HostPath); the path's folder is opened and, under --sandbox,
// checked to lie inside the sandbox (Place); the file is then opened, created,
// replaced or removed relative to that opened folder, so that what was checked
// is what is used, whatever is renamed meanwhile.
#pragma once
#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <string>
#include <string_view>

namespace host {

// The error of a name that leads outside the sandbox (the kernel's own for an
// escape from a confined lookup).
inline constexpr int kOutside = EXDEV;
// The error of a name that matches two files once case is ignored.
inline constexpr int kAmbiguous = ENOTUNIQ;

// Confines every later file operation to folder and below, and to the library
// folders that exist: 0, or the error of a folder that cannot be opened.
int SetSandbox(const std::string& folder);
// Another folder whose files count as inside the sandbox: 0 or errno.
int AddSandboxRoot(const std::string& folder);
bool Sandboxed();

// The host path a user's name stands for, as written: 0, or EINVAL for a name
// that no file can have (one holding a NUL byte, which the system would cut it
// at). A leading "$" names a file of the system library, the folder that
// BASIC_LIB names, and a leading "*" one of the group library (BASIC_GROUP);
// unset or empty, each is the working folder. A library folder that does not
// exist is ENOENT, with *note naming it ("no folder /x") when note is given.
int HostPath(std::string_view name, std::string* path, std::string* note = nullptr);

// What a name of an existing file is looked for as: data files by their name,
// programs also with ".bas" added.
enum class FileKind { kData, kProgram };

// The host path of an existing file a user names, as a user of old listings on
// a Linux disk expects it found: the name as written, then (for a program) the
// name with ".bas", then a file of the folder whose name is either of them once
// case is ignored. 0 with *path the file found, or the name as written when
// none is (the open then fails as it would); the errors of HostPath, kOutside
// for a folder outside the sandbox, or kAmbiguous when two files match once
// case is ignored, with *note naming both.
int FindFile(std::string_view name, FileKind kind, std::string* path, std::string* note = nullptr);

// The folder of a host path, opened (and under the sandbox checked), and the
// last component of the path in it.
class Place final {
 public:
  Place() = default;
  Place(Place&& other) noexcept;
  Place& operator=(Place&& other) noexcept;
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place();

  // Resolves path, following symbolic links of its last component so that
  // Name() names no link, or nothing yet: 0 or errno (kOutside when the
  // folder lies outside the sandbox).
  int Resolve(const std::string& path);
  bool Valid() const { return folder_ >= 0; }
  int Folder() const { return folder_; }
  const std::string& Name() const { return name_; }
  // Opens the file; a link put in its place since Resolve is refused (ELOOP).
  // -1 with errno set.
  int Open(int flags, mode_t mode = 0) const;
  int Stat(struct stat* st) const;  // 0 or errno; a link is not followed
  int Remove() const;               // 0 or errno
  // The file of this folder named Name() + suffix.
  Place Sibling(std::string_view suffix) const;

 private:
  void Reset();

  int folder_ = -1;  // an O_PATH descriptor
  std::string name_;
};

// Opens an existing file a user names, as open(2) would: without a sandbox by
// the path itself (so /dev/stdin works), within one through a Place. -1 with
// errno set.
int OpenHostFile(const std::string& path, int flags);

// A new file beside a target, made exclusively under a name of its own (never
// through a link) and locked while it lives, so that one a killed process left
// is known and removed by the next. Removed at the end unless it became the target.
class TempFile final {
 public:
  explicit TempFile(const Place& target) : target_(target) {}
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  ~TempFile();

  int Create(mode_t mode);  // 0 or errno
  int Descriptor() const { return fd_; }
  int ReplaceTarget();  // renames it over the target: 0 or errno
  int LinkAsTarget();   // makes it the target only where none exists: 0, EEXIST or errno

 private:
  void RemoveStale() const;

  const Place& target_;
  std::string name_;  // empty once it is the target
  int fd_ = -1;
};

// A lock on a whole file (flock) shared by every process on the machine.
// Waits while another holds a conflicting one; Ctrl+C or an ending signal
// stops the wait (kStopped, the break left for the run to see).
enum class LockWait { kLocked, kStopped, kFailed };
LockWait LockWhole(int fd, bool exclusive);
bool TryLockWhole(int fd, bool exclusive);
void UnlockWhole(int fd);

// Writes all of count bytes at offset (or at the end with offset -1): 0 or errno.
int WriteAllAt(int fd, const void* from, size_t count, off_t offset);
// Reads all of count bytes at offset: 0, errno, or EIO for a short file.
int ReadAllAt(int fd, void* to, size_t count, off_t offset);

}  // namespace host
