// What the units of this process that have one data file open share: the lock
// that LOCK takes on the file, seen by every process on the machine, and the
// file's rollback journal beside it. Units of one program on one file thus
// never wait for each other, while other programs wait for them.
#pragma once
#include <sys/stat.h>

#include <cstdint>
#include <vector>

#include "platform/host_files.h"

class SharedFile final {
 public:
  // The entry of a data file just opened as fd (its folder and name in place):
  // the one other units of this process hold, or a new one.
  static SharedFile* Join(int fd, const struct stat& st, host::Place place, uint32_t words,
                          uint32_t records);
  // A unit leaves; the last one releases the lock and removes an unused journal.
  void Leave();

  // LOCK: waits for the file's lock, then rolls back what a program that died
  // holding it left half-written.
  host::LockWait Lock();
  void Unlock();

  // Rolls back the statement of a program that died writing the file; fd is
  // the caller's descriptor of it, writable or not.
  void Recover(int fd);

  // A statement's journal: BeginJournal takes the journal's lock (rolling back
  // a dead writer's first) and returns 0 or errno; WriteJournal writes it whole;
  // EndJournal clears it once the records are written, and lets it go.
  int BeginJournal(int fd);
  int WriteJournal(const std::vector<uint8_t>& bytes);
  void EndJournal(bool clear);

  SharedFile(const SharedFile&) = delete;
  SharedFile& operator=(const SharedFile&) = delete;
  SharedFile(host::Place place, int lockFd, const struct stat& st, uint32_t words,
             uint32_t records);
  ~SharedFile();

 private:
  // True when a whole journal was put back and cleared.
  bool RecoverLocked(int journalFd, int fd);

  host::Place place_;  // the data file's folder and name
  int lockFd_;         // LOCK's lock is taken on this descriptor of the file
  dev_t device_;
  ino_t inode_;
  mode_t mode_;
  uint32_t words_, records_;
  int holders_ = 0;          // units of this process with the file open
  int lockers_ = 0;          // of them, those that hold LOCK
  int journalFd_ = -1;       // open once a statement needed the journal
  size_t journalBytes_ = 0;  // the longest journal written
  std::vector<uint8_t> bytes_;
};
