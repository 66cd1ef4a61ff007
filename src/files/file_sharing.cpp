#include "files/file_sharing.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "files/data_file.h"
#include "files/data_journal.h"

namespace {

// The data files this process has open, one entry per file.
std::vector<std::unique_ptr<SharedFile>>& Shared() {
  static std::vector<std::unique_ptr<SharedFile>> shared;
  return shared;
}

// A journal is put back only when its owner could have written the file: a
// stranger's file beside a shared one must not change it.
bool Trusted(const struct stat& journal, const struct stat& data) {
  if (journal.st_uid == data.st_uid || journal.st_uid == geteuid()) return true;
  if (journal.st_gid == data.st_gid && (data.st_mode & S_IWGRP)) return true;
  return (data.st_mode & S_IWOTH) != 0;
}

// A journal past this is cut back once it is cleared.
constexpr size_t kJournalKept = 64 * 1024;

}  // namespace

SharedFile::SharedFile(host::Place place, int lockFd, const struct stat& st, uint32_t words,
                       uint32_t records)
    : place_(std::move(place)),
      lockFd_(lockFd),
      device_(st.st_dev),
      inode_(st.st_ino),
      mode_(st.st_mode),
      words_(words),
      records_(records) {}

SharedFile::~SharedFile() {
  if (journalFd_ >= 0) close(journalFd_);
  close(lockFd_);
}

SharedFile* SharedFile::Join(int fd, const struct stat& st, host::Place place, uint32_t words,
                             uint32_t records) {
  for (auto& shared : Shared()) {
    if (shared->device_ == st.st_dev && shared->inode_ == st.st_ino) {
      ++shared->holders_;
      return shared.get();
    }
  }
  // A descriptor of its own: its lock belongs to no unit's descriptor.
  int lockFd = fcntl(fd, F_DUPFD_CLOEXEC, 0);
  if (lockFd < 0) return nullptr;
  Shared().push_back(std::make_unique<SharedFile>(std::move(place), lockFd, st, words, records));
  SharedFile* shared = Shared().back().get();
  shared->holders_ = 1;
  return shared;
}

void SharedFile::Leave() {
  if (--holders_ > 0) return;
  if (lockers_ > 0) host::UnlockWhole(lockFd_);
  if (journalFd_ >= 0 && host::TryLockWhole(journalFd_, true)) {
    // No other process is writing through it: a cleared journal goes.
    struct stat st;
    uint8_t magic = 0;
    if (fstat(journalFd_, &st) == 0 && st.st_nlink > 0 &&
        (pread(journalFd_, &magic, 1, 0) != 1 || magic == 0))
      place_.Sibling(data_journal::kSuffix).Remove();
    host::UnlockWhole(journalFd_);
  }
  auto& shared = Shared();
  auto self =
      std::find_if(shared.begin(), shared.end(),
                   [this](const std::unique_ptr<SharedFile>& s) { return s.get() == this; });
  if (self != shared.end()) shared.erase(self);  // destroys this
}

host::LockWait SharedFile::Lock() {
  if (lockers_ == 0) {
    host::LockWait wait = host::LockWhole(lockFd_, true);
    if (wait != host::LockWait::kLocked) return wait;
    Recover(lockFd_);
  }
  ++lockers_;
  return host::LockWait::kLocked;
}

void SharedFile::Unlock() {
  if (lockers_ > 0 && --lockers_ == 0) host::UnlockWhole(lockFd_);
}

void SharedFile::Recover(int fd) {
  int journalFd = journalFd_;
  if (journalFd < 0) {
    host::Place journal = place_.Sibling(data_journal::kSuffix);
    journalFd = journal.Open(O_RDWR | O_NONBLOCK);
    if (journalFd < 0 && errno == EACCES) journalFd = journal.Open(O_RDONLY | O_NONBLOCK);
    if (journalFd < 0) return;  // none: the usual case
  }
  if (host::LockWhole(journalFd, true) == host::LockWait::kLocked) {
    // Put back, it has done its work: no unit of this process writes through it.
    if (RecoverLocked(journalFd, fd) && journalFd != journalFd_)
      place_.Sibling(data_journal::kSuffix).Remove();
    host::UnlockWhole(journalFd);
  }
  if (journalFd != journalFd_) close(journalFd);
}

bool SharedFile::RecoverLocked(int journalFd, int fd) {
  std::vector<data_journal::Entry> entries;
  struct stat journal, data;
  if (!data_journal::ReadJournal(journalFd, &bytes_) ||
      !data_journal::Parse(bytes_.data(), bytes_.size(), words_, records_, &entries) ||
      fstat(journalFd, &journal) != 0 || fstat(fd, &data) != 0 || !Trusted(journal, data))
    return false;
  // The caller's descriptor may be for reading only: putting back needs one for writing.
  int writer = (fcntl(fd, F_GETFL) & O_ACCMODE) == O_RDWR ? fd : place_.Open(O_RDWR | O_NONBLOCK);
  if (writer < 0) return false;  // left for one who may write the file
  bool ok = true;
  for (const data_journal::Entry& e : entries) {
    off_t at =
        static_cast<off_t>(data_file::kHeaderBytes +
                           uint64_t{e.record - 1} * data_file::RecordBytes(words_) + e.offset);
    ok = host::WriteAllAt(writer, e.bytes, e.length, at) == 0 && ok;
  }
  ok = ok && data_journal::Clear(journalFd) == 0;
  if (writer != fd) close(writer);
  return ok;
}

int SharedFile::BeginJournal(int fd) {
  for (int attempt = 0; attempt < 8; ++attempt) {
    if (journalFd_ < 0) {
      journalFd_ = place_.Sibling(data_journal::kSuffix).Open(O_RDWR | O_CREAT | O_NONBLOCK, 0600);
      if (journalFd_ < 0) return errno;
      struct stat st;
      if (fstat(journalFd_, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(journalFd_);
        journalFd_ = -1;
        return EINVAL;
      }
      // Whoever may write the file may write its journal.
      if (st.st_uid == geteuid()) fchmod(journalFd_, mode_ & 0666);
    }
    host::LockWait wait = host::LockWhole(journalFd_, true);
    if (wait == host::LockWait::kStopped) return EINTR;
    if (wait == host::LockWait::kFailed) return errno;
    struct stat st;
    if (fstat(journalFd_, &st) == 0 && st.st_nlink > 0) {
      RecoverLocked(journalFd_, fd);
      return 0;
    }
    // Removed by another process's last close since it was opened: make it anew.
    host::UnlockWhole(journalFd_);
    close(journalFd_);
    journalFd_ = -1;
  }
  return EAGAIN;
}

int SharedFile::WriteJournal(const std::vector<uint8_t>& bytes) {
  journalBytes_ = std::max(journalBytes_, bytes.size());
  return host::WriteAllAt(journalFd_, bytes.data(), bytes.size(), 0);
}

void SharedFile::EndJournal(bool clear) {
  if (clear && data_journal::Clear(journalFd_) == 0 && journalBytes_ > kJournalKept) {
    if (ftruncate(journalFd_, 0) == 0) journalBytes_ = 0;
  }
  host::UnlockWhole(journalFd_);
}
