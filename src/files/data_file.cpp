#include "files/data_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/convert.h"

namespace {

using namespace data_file;

constexpr uint8_t kMagic[8] = {0x89, 'B', 'D', 'F', '\r', '\n', 0x1A, '\n'};

// Every write to any data file; a loaded record read before the last write is
// read again, so two units on one file never see stale words.
uint64_t g_writes = 1;

uint16_t Get16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }
uint32_t Get32(const uint8_t* p) { return Get16(p) | uint32_t{Get16(p + 2)} << 16; }
void Put16(uint8_t* p, uint16_t v) {
  p[0] = static_cast<uint8_t>(v);
  p[1] = static_cast<uint8_t>(v >> 8);
}
void Put32(uint8_t* p, uint32_t v) {
  Put16(p, static_cast<uint16_t>(v));
  Put16(p + 2, static_cast<uint16_t>(v >> 16));
}

// Reads or writes all of count bytes at offset; false on an error or a short file.
bool ReadAt(int fd, uint8_t* to, size_t count, off_t offset) {
  while (count > 0) {
    ssize_t n = pread(fd, to, count, offset);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    to += n;
    count -= static_cast<size_t>(n);
    offset += n;
  }
  return true;
}

bool WriteAt(int fd, const uint8_t* from, size_t count, off_t offset) {
  while (count > 0) {
    ssize_t n = pwrite(fd, from, count, offset);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    from += n;
    count -= static_cast<size_t>(n);
    offset += n;
  }
  return true;
}

}  // namespace

OpenStatus ReadDataHeader(int fd, uint32_t* words, uint32_t* records) {
  uint8_t header[kHeaderBytes] = {};
  ssize_t got = 0;
  while (got < static_cast<ssize_t>(kHeaderBytes)) {
    ssize_t n = pread(fd, header + got, kHeaderBytes - got, got);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return OpenStatus::kFailed;
    if (n == 0) break;
    got += n;
  }
  // Text, or anything else that does not begin as a data file does.
  size_t compared = std::min<size_t>(static_cast<size_t>(got), sizeof kMagic);
  if (got == 0 || std::memcmp(header, kMagic, compared) != 0) return OpenStatus::kNotData;
  if (got < static_cast<ssize_t>(kHeaderBytes)) return OpenStatus::kDamaged;
  *words = Get16(header + 10);
  *records = Get32(header + 12);
  if (Get16(header + 8) != kVersion || *words < 1 || *words > kMaxWords || *records < 1)
    return OpenStatus::kDamaged;
  for (uint32_t i = 16; i < kHeaderBytes; ++i)
    if (header[i] != 0) return OpenStatus::kDamaged;
  struct stat st;
  if (fstat(fd, &st) != 0) return OpenStatus::kFailed;
  uint64_t expected = kHeaderBytes + uint64_t{*records} * RecordBytes(*words);
  if (static_cast<uint64_t>(st.st_size) != expected) return OpenStatus::kDamaged;
  return OpenStatus::kReadWrite;
}

CreateStatus DataFile::Create(const std::string& path, double records, double words) {
  int64_t count, size;
  if (!conv::RoundIn(records, 1, 0xFFFFFFFF, &count) || !conv::RoundIn(words, 1, kMaxWords, &size))
    return CreateStatus::kBadSize;
  uint64_t bytes =
      kHeaderBytes + static_cast<uint64_t>(count) * RecordBytes(static_cast<uint32_t>(size));
  if (bytes > kMaxFileBytes) return CreateStatus::kBadSize;
  int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) return errno == EEXIST ? CreateStatus::kExists : CreateStatus::kFailed;
  uint8_t header[kHeaderBytes] = {};
  std::memcpy(header, kMagic, sizeof kMagic);
  Put16(header + 8, kVersion);
  Put16(header + 10, static_cast<uint16_t>(size));
  Put32(header + 12, static_cast<uint32_t>(count));
  // The records are zero bytes, each an end of file; the system need not store them.
  bool ok = WriteAt(fd, header, sizeof header, 0) && ftruncate(fd, static_cast<off_t>(bytes)) == 0;
  ok = close(fd) == 0 && ok;
  if (!ok) {
    unlink(path.c_str());
    return CreateStatus::kFailed;
  }
  return CreateStatus::kCreated;
}

OpenStatus DataFile::Open(const std::string& path, bool readOnly) {
  Close();
  // Never waits: a FIFO or a device is refused below, not read.
  bool writable = !readOnly;
  int fd = writable ? open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC) : -1;
  if (fd < 0 && (!writable || errno == EACCES || errno == EROFS || errno == EPERM)) {
    writable = false;
    fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  }
  if (fd < 0)
    return errno == ENOENT || errno == ENOTDIR ? OpenStatus::kMissing : OpenStatus::kFailed;
  struct stat st;
  OpenStatus status = OpenStatus::kFailed;
  uint32_t words = 0, records = 0;
  if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) status = ReadDataHeader(fd, &words, &records);
  if (status != OpenStatus::kReadWrite) {
    close(fd);
    return status;
  }
  // No write bit at all is read-only for everyone: the superuser's open
  // succeeds, but a program must not change a file its owner protected.
  if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) writable = false;
  fd_ = fd;
  writable_ = writable;
  words_ = words;
  records_ = records;
  tagBytes_ = (words + 7) / 8;
  device_ = st.st_dev;
  inode_ = st.st_ino;
  record_ = std::make_unique<uint8_t[]>(RecordBytes(words));
  loaded_ = 0;
  dirty_ = false;
  return writable ? OpenStatus::kReadWrite : OpenStatus::kReadOnly;
}

void DataFile::Close() {
  if (fd_ < 0) return;
  Store();
  close(fd_);
  fd_ = -1;
  record_.reset();
  loaded_ = 0;
  dirty_ = false;
}

off_t DataFile::Offset(uint32_t record) const {
  return static_cast<off_t>(kHeaderBytes + uint64_t{record - 1} * RecordBytes(words_));
}

bool DataFile::Load(uint32_t record) {
  if (record == loaded_ && (dirty_ || loadedStamp_ == g_writes)) return true;
  if (!Store()) return false;
  loaded_ = 0;
  if (!ReadAt(fd_, record_.get(), RecordBytes(words_), Offset(record))) return false;
  loaded_ = record;
  loadedStamp_ = g_writes;
  return true;
}

bool DataFile::Store() {
  if (!dirty_) return true;
  dirty_ = false;
  bool ok = WriteAt(fd_, record_.get(), RecordBytes(words_), Offset(loaded_));
  loadedStamp_ = ++g_writes;
  if (!ok) loaded_ = 0;  // what the file holds is unknown now: read it again
  return ok;
}

FileItem DataFile::ItemAt(uint32_t word) const {
  if (word >= words_) return {FileItem::kEndRecord, 0, 0.0f, {}};
  if (Tag(word)) {
    if (word + 1 >= words_) return {FileItem::kDamaged, 0, 0.0f, {}};
    uint32_t bits = Get16(Word(word)) | uint32_t{Get16(Word(word + 1))} << 16;
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return {FileItem::kNumber, kNumberWords, value, {}};
  }
  uint16_t control = Get16(Word(word));
  if (control == 0) return {FileItem::kEndFile, 1, 0.0f, {}};
  if (control == 1) return {FileItem::kEndRecord, 1, 0.0f, {}};
  uint32_t length = control - 2u;
  uint32_t size = StringWords(length);
  if (size > words_ - word) return {FileItem::kDamaged, 0, 0.0f, {}};
  const char* text = reinterpret_cast<const char*>(Word(word + 1));
  return {FileItem::kString, size, 0.0f, std::string_view(text, length)};
}

void DataFile::SetTag(uint32_t word, bool on) {
  uint8_t bit = static_cast<uint8_t>(1u << (word % 8));
  if (on)
    record_[word / 8] |= bit;
  else
    record_[word / 8] &= static_cast<uint8_t>(~bit);
}

void DataFile::PutNumber(uint32_t word, float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  SetTag(word, true);
  SetTag(word + 1, false);
  Put16(Word(word), static_cast<uint16_t>(bits));
  Put16(Word(word + 1), static_cast<uint16_t>(bits >> 16));
  dirty_ = true;
}

void DataFile::PutString(uint32_t word, std::string_view text) {
  uint32_t size = StringWords(text.size());
  for (uint32_t w = word; w < word + size; ++w) SetTag(w, false);
  Put16(Word(word), static_cast<uint16_t>(text.size() + 2));
  uint8_t* to = Word(word + 1);
  if (!text.empty()) std::memcpy(to, text.data(), text.size());
  if (text.size() % 2) to[text.size()] = 0;
  dirty_ = true;
}

void DataFile::PutControl(uint32_t word, uint16_t value) {
  SetTag(word, false);
  Put16(Word(word), value);
  dirty_ = true;
}
