// Data files: numbers and strings kept in fixed-size records of 16-bit words,
// in a portable, versioned layout (described in the README):
//
//   header, 32 bytes: magic 89 42 44 46 0D 0A 1A 0A ("\x89BDF\r\n\x1a\n"),
//     version (2 bytes), words per record (2), records (4), 16 zero bytes;
//   records, each a tag map of one bit per word (bit w%8 of byte w/8), then the
//     words, little-endian.
//
// An item starts at a word. A set tag bit starts a number: its 32-bit float in
// that word and the next. A clear tag bit starts a control word: 0 marks the
// end of the file, 1 the end of the record, 2+n a string of n characters that
// follow in ceil(n/2) words. A record of zero bytes therefore reads as an end of
// file, which is what CREATE leaves in every record.
#pragma once
#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "files/data_journal.h"
#include "platform/host_files.h"

class SharedFile;

namespace data_file {
inline constexpr uint16_t kVersion = 1;
inline constexpr uint32_t kHeaderBytes = 32;
inline constexpr uint32_t kDefaultWords = 256;  // words per record when CREATE names none
inline constexpr uint32_t kMaxWords = 256;      // the classic largest record
inline constexpr uint64_t kMaxFileBytes = uint64_t{1} << 30;  // CREATE refuses larger files
// Record numbers are 32-bit floats: past 2^24 - 1 two numbers would name one record.
inline constexpr uint32_t kMaxRecords = (uint32_t{1} << 24) - 1;

// Bytes one record takes on disk.
inline uint32_t RecordBytes(uint32_t words) { return (words + 7) / 8 + 2 * words; }
// Words an item takes: a number 2, a string 1 + ceil(length/2), a mark 1.
inline uint32_t StringWords(uint64_t length) { return static_cast<uint32_t>(1 + (length + 1) / 2); }
inline constexpr uint32_t kNumberWords = 2;
}  // namespace data_file

// How opening, creating or purging a file went; ASSIGN, CREATE and PURGE hand
// the first ones on as their status values. kBadName is a name no file can
// have, kOutside one that leads outside the sandbox, kAmbiguous one that two
// files match once case is ignored. kText and kTextReadOnly: a text file opened.
enum class OpenStatus {
  kReadWrite,
  kReadOnly,
  kMissing,
  kNotData,
  kDamaged,
  kFailed,
  kBadName,
  kOutside,
  kAmbiguous,
  kText,
  kTextReadOnly
};
enum class CreateStatus { kCreated, kExists, kBadSize, kFailed, kBadName, kOutside };

// The status of a name that the host refused to resolve (host::HostPath, Place::Resolve).
OpenStatus NameStatus(int error);

// One item read at a word of the loaded record.
struct FileItem {
  enum Kind { kNumber, kString, kEndRecord, kEndFile, kDamaged };
  Kind kind;
  uint32_t words;  // 0 at the physical end of the record
  float number;
  std::string_view text;  // points into the record buffer
};

// A data file open in one unit. A statement reads and changes records in
// memory; Commit writes its changes so that a kill of the process at any
// instant leaves every record as before the statement or as after it: a change
// inside one page of the file is one write, the system's page copy being whole;
// any other goes through the rollback journal. Only the words the statement
// wrote are written, merged into the record as the file holds it then.
class DataFile final {
 public:
  DataFile() = default;
  DataFile(const DataFile&) = delete;
  DataFile& operator=(const DataFile&) = delete;
  ~DataFile() { Close(); }

  // Creates a file of records, every record an end of file, made whole under
  // another name first with its space reserved. A present file is kept.
  // *error gets the system's error of kFailed.
  static CreateStatus Create(const std::string& name, double records, double words,
                             int* error = nullptr);
  // Opens a data file, its name found as host::FindFile finds one; readOnly
  // asks for no writing even when the file allows it. *note gets what a
  // failure to find the name adds to its message.
  OpenStatus Open(const std::string& name, bool readOnly, std::string* note = nullptr);
  void Close();  // commits, and lets go of LOCK
  bool IsOpen() const { return fd_ >= 0; }
  bool Writable() const { return writable_; }
  uint32_t Records() const { return records_; }
  uint32_t Words() const { return words_; }
  // The file's identity, to find a file open twice.
  dev_t Device() const { return device_; }
  ino_t Inode() const { return inode_; }

  // Makes record (1-based) the loaded one. fresh reads it from the file again
  // (the pointer entered it), unless the statement under way changed it. False
  // after a read error.
  bool Load(uint32_t record, bool fresh = false);
  // Writes what the statement under way changed; false with Error() set.
  bool Commit();
  int Error() const { return error_; }

  // LOCK and UNLOCK: the file's lock, shared by every process on the machine.
  host::LockWait Lock();
  void Unlock();

  FileItem ItemAt(uint32_t word) const;
  void PutNumber(uint32_t word, float value);
  void PutString(uint32_t word, std::string_view text);  // the caller checked the room
  void PutEndRecord(uint32_t word) { PutControl(word, 1); }
  void PutEndFile(uint32_t word) { PutControl(word, 0); }

 private:
  // A record in memory, and the words of it that the statement under way changed.
  struct Slot {
    uint32_t record = 0;        // 0 when it holds none
    uint32_t from = 0, to = 0;  // the changed words lie in [from, to); none when equal
    uint8_t changed[32] = {};   // which: bit w%8 of byte w/8
    bool tagsChanged = false;   // a tag bit of them changed
    bool gaps = false;          // words in [from, to) that were not changed
    uint64_t stamp = 0;         // the process's write count when it was read
    std::unique_ptr<uint8_t[]> bytes;
    bool Changed() const { return from < to; }
    bool ChangedWord(uint32_t w) const { return (changed[w / 8] >> (w % 8)) & 1; }
  };

  Slot& Current() { return slots_[current_]; }
  const Slot& Current() const { return slots_[current_]; }
  bool Tag(uint32_t word) const { return (Current().bytes[word / 8] >> (word % 8)) & 1; }
  void SetTag(uint32_t word, bool on);
  uint8_t* Word(uint32_t word) { return Current().bytes.get() + tagBytes_ + 2 * word; }
  const uint8_t* Word(uint32_t word) const { return Current().bytes.get() + tagBytes_ + 2 * word; }
  void Changing(uint32_t word, uint32_t count);
  void PutControl(uint32_t word, uint16_t value);
  off_t Offset(uint32_t record) const;
  // The bytes of slot's record that a commit writes: [*from, *to).
  void Span(const Slot& slot, bool withTags, uint32_t* from, uint32_t* to) const;
  // Puts the slot's changed words over fresh, the same span as the file holds it now.
  void Merge(const Slot& slot, uint8_t* fresh, uint32_t from, uint32_t to) const;
  bool CommitOne(Slot& slot);
  bool CommitJournaled();
  bool Fail(int error);

  int fd_ = -1;
  bool writable_ = false;
  bool locked_ = false;  // this unit holds LOCK
  uint32_t words_ = 0;
  uint32_t records_ = 0;
  uint32_t tagBytes_ = 0;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  SharedFile* shared_ = nullptr;
  std::vector<Slot> slots_;  // the records a statement touches; kept between statements
  size_t current_ = 0;
  int error_ = 0;
  std::vector<uint8_t> fresh_;  // the file's bytes of the spans a commit writes
  data_journal::Builder journal_;
};

// Reads the header of an open descriptor: kReadWrite when it is a sound data
// file (the caller decides about writing), with its sizes.
OpenStatus ReadDataHeader(int fd, uint32_t* words, uint32_t* records);
