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

namespace data_file {
inline constexpr uint16_t kVersion = 1;
inline constexpr uint32_t kHeaderBytes = 32;
inline constexpr uint32_t kDefaultWords = 256;  // words per record when CREATE names none
inline constexpr uint32_t kMaxWords = 256;      // the classic largest record
inline constexpr uint64_t kMaxFileBytes = uint64_t{1} << 30;  // CREATE refuses larger files

// Bytes one record takes on disk.
inline uint32_t RecordBytes(uint32_t words) { return (words + 7) / 8 + 2 * words; }
// Words an item takes: a number 2, a string 1 + ceil(length/2), a mark 1.
inline uint32_t StringWords(uint64_t length) { return static_cast<uint32_t>(1 + (length + 1) / 2); }
inline constexpr uint32_t kNumberWords = 2;
}  // namespace data_file

// How opening, creating or purging a file went; ASSIGN, CREATE and PURGE hand
// these on as their status values.
enum class OpenStatus { kReadWrite, kReadOnly, kMissing, kNotData, kDamaged, kFailed };
enum class CreateStatus { kCreated, kExists, kBadSize, kFailed };

// One item read at a word of the loaded record.
struct FileItem {
  enum Kind { kNumber, kString, kEndRecord, kEndFile, kDamaged };
  Kind kind;
  uint32_t words;  // 0 at the physical end of the record
  float number;
  std::string_view text;  // points into the record buffer
};

class DataFile final {
 public:
  DataFile() = default;
  DataFile(const DataFile&) = delete;
  DataFile& operator=(const DataFile&) = delete;
  ~DataFile() { Close(); }

  // Creates a file of records, every record an end of file. A present file is kept.
  static CreateStatus Create(const std::string& path, double records, double words);
  // Opens a data file; readOnly asks for no writing even when the file allows it.
  OpenStatus Open(const std::string& path, bool readOnly);
  void Close();
  bool IsOpen() const { return fd_ >= 0; }
  bool Writable() const { return writable_; }
  uint32_t Records() const { return records_; }
  uint32_t Words() const { return words_; }
  // The file's identity, to find a file open twice.
  dev_t Device() const { return device_; }
  ino_t Inode() const { return inode_; }

  // Makes record (1-based) the loaded one, storing a changed one first; false
  // after a read or write error.
  bool Load(uint32_t record);
  // Writes the loaded record back when it changed; false after a write error.
  bool Store();

  FileItem ItemAt(uint32_t word) const;
  void PutNumber(uint32_t word, float value);
  void PutString(uint32_t word, std::string_view text);  // the caller checked the room
  void PutEndRecord(uint32_t word) { PutControl(word, 1); }
  void PutEndFile(uint32_t word) { PutControl(word, 0); }

 private:
  bool Tag(uint32_t word) const { return (record_[word / 8] >> (word % 8)) & 1; }
  void SetTag(uint32_t word, bool on);
  uint8_t* Word(uint32_t word) { return record_.get() + tagBytes_ + 2 * word; }
  const uint8_t* Word(uint32_t word) const { return record_.get() + tagBytes_ + 2 * word; }
  void PutControl(uint32_t word, uint16_t value);
  off_t Offset(uint32_t record) const;

  int fd_ = -1;
  bool writable_ = false;
  uint32_t words_ = 0;
  uint32_t records_ = 0;
  uint32_t tagBytes_ = 0;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  std::unique_ptr<uint8_t[]> record_;  // the loaded record: tag map, then words
  uint32_t loaded_ = 0;                // its number; 0 when none
  uint64_t loadedStamp_ = 0;           // the write count when it was read
  bool dirty_ = false;
};

// Reads the header of an open descriptor: kReadWrite when it is a sound data
// file (the caller decides about writing), with its sizes.
OpenStatus ReadDataHeader(int fd, uint32_t* words, uint32_t* records);
