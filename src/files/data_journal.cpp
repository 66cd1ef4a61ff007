#include "files/data_journal.h"

#include <sys/stat.h>

#include <cstring>

#include "files/data_file.h"
#include "platform/host_files.h"

namespace data_journal {
namespace {

constexpr uint8_t kMagic[8] = {0x89, 'B', 'D', 'J', '\r', '\n', 0x1A, '\n'};
constexpr uint16_t kVersion = 1;
constexpr uint32_t kEntryHead = 8;  // record, offset, length

uint16_t Get16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }
uint32_t Get32(const uint8_t* p) { return Get16(p) | uint32_t{Get16(p + 2)} << 16; }
uint64_t Get64(const uint8_t* p) { return Get32(p) | uint64_t{Get32(p + 4)} << 32; }
void Put16(uint8_t* p, uint32_t v) {
  p[0] = static_cast<uint8_t>(v);
  p[1] = static_cast<uint8_t>(v >> 8);
}
void Put32(uint8_t* p, uint32_t v) {
  Put16(p, v & 0xFFFF);
  Put16(p + 2, v >> 16);
}
void Put64(uint8_t* p, uint64_t v) {
  Put32(p, static_cast<uint32_t>(v));
  Put32(p + 4, static_cast<uint32_t>(v >> 32));
}

// FNV-1a: a torn write (a new header over an old payload, or the reverse) does not add up.
uint64_t Fnv(uint64_t hash, const uint8_t* bytes, size_t size) {
  for (size_t i = 0; i < size; ++i) hash = (hash ^ bytes[i]) * 0x100000001B3ull;
  return hash;
}

// The largest journal a statement writes: every record of the largest file once.
constexpr uint64_t kMaxJournal =
    kHeaderBytes + data_file::kMaxFileBytes + uint64_t{kEntryHead} * data_file::kMaxRecords;

}  // namespace

uint64_t Checksum(const uint8_t* journal, size_t payload) {
  return Fnv(Fnv(0xCBF29CE484222325ull, journal + 8, 16), journal + kHeaderBytes, payload);
}

void Builder::Start(uint32_t words, uint32_t records) {
  bytes_.assign(kHeaderBytes, 0);
  std::memcpy(bytes_.data(), kMagic, sizeof kMagic);
  Put16(bytes_.data() + 8, kVersion);
  Put16(bytes_.data() + 10, words);
  Put32(bytes_.data() + 12, records);
  entries_ = 0;
}

void Builder::Add(uint32_t record, uint32_t offset, const uint8_t* bytes, uint32_t length) {
  size_t at = bytes_.size();
  bytes_.resize(at + kEntryHead + length);
  Put32(bytes_.data() + at, record);
  Put16(bytes_.data() + at + 4, offset);
  Put16(bytes_.data() + at + 6, length);
  std::memcpy(bytes_.data() + at + kEntryHead, bytes, length);
  ++entries_;
}

const std::vector<uint8_t>& Builder::Finish() {
  size_t payload = bytes_.size() - kHeaderBytes;
  Put32(bytes_.data() + 16, entries_);
  Put32(bytes_.data() + 20, static_cast<uint32_t>(payload));
  Put64(bytes_.data() + 24, Checksum(bytes_.data(), payload));
  return bytes_;
}

bool Parse(const uint8_t* bytes, size_t size, uint32_t words, uint32_t records,
           std::vector<Entry>* entries) {
  entries->clear();
  if (size < kHeaderBytes || std::memcmp(bytes, kMagic, sizeof kMagic) != 0) return false;
  if (Get16(bytes + 8) != kVersion || Get16(bytes + 10) != words || Get32(bytes + 12) != records)
    return false;
  uint32_t count = Get32(bytes + 16);
  uint64_t payload = Get32(bytes + 20);
  if (payload > size - kHeaderBytes) return false;
  if (Get64(bytes + 24) != Checksum(bytes, payload)) return false;
  const uint32_t recordBytes = data_file::RecordBytes(words);
  const uint8_t* p = bytes + kHeaderBytes;
  const uint8_t* end = p + payload;
  for (uint32_t i = 0; i < count; ++i) {
    if (end - p < static_cast<ptrdiff_t>(kEntryHead)) return false;
    Entry e{Get32(p), Get16(p + 4), Get16(p + 6), p + kEntryHead};
    if (e.record < 1 || e.record > records || e.length == 0 || e.offset >= recordBytes ||
        e.length > recordBytes - e.offset || end - e.bytes < static_cast<ptrdiff_t>(e.length))
      return false;
    entries->push_back(e);
    p = e.bytes + e.length;
  }
  return p == end;
}

bool ReadJournal(int fd, std::vector<uint8_t>* bytes) {
  struct stat st;
  uint8_t magic[sizeof kMagic];
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size < kHeaderBytes ||
      static_cast<uint64_t>(st.st_size) > kMaxJournal ||
      host::ReadAllAt(fd, magic, sizeof magic, 0) != 0 ||
      std::memcmp(magic, kMagic, sizeof kMagic) != 0)
    return false;
  bytes->resize(static_cast<size_t>(st.st_size));
  return host::ReadAllAt(fd, bytes->data(), bytes->size(), 0) == 0;
}

int Clear(int fd) {
  static const uint8_t kZero[sizeof kMagic] = {};
  return host::WriteAllAt(fd, kZero, sizeof kZero, 0);
}

}  // namespace data_journal
