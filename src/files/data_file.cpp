#include "files/data_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/convert.h"
#include "files/file_sharing.h"

namespace {

using namespace data_file;

constexpr uint8_t kMagic[8] = {0x89, 'B', 'D', 'F', '\r', '\n', 0x1A, '\n'};
// The system copies a write into its cache a page at a time and stops for a
// kill only between pages: a write inside one page is never torn by a kill.
constexpr uint64_t kPage = 4096;

// Every write to any data file by this process; a loaded record read before
// the last write is read again, so two units on one file never see stale words.
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

}  // namespace

OpenStatus NameStatus(int error) {
  switch (error) {
    case EINVAL:
      return OpenStatus::kBadName;
    case host::kOutside:
      return OpenStatus::kOutside;
    case host::kAmbiguous:
      return OpenStatus::kAmbiguous;
    case ENOENT:
    case ENOTDIR:
      return OpenStatus::kMissing;
    default:
      return OpenStatus::kFailed;
  }
}

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

CreateStatus DataFile::Create(const std::string& name, double records, double words, int* error) {
  int ignored;
  if (!error) error = &ignored;
  *error = 0;
  int64_t count, size;
  if (!conv::RoundIn(records, 1, kMaxRecords, &count) || !conv::RoundIn(words, 1, kMaxWords, &size))
    return CreateStatus::kBadSize;
  uint64_t bytes =
      kHeaderBytes + static_cast<uint64_t>(count) * RecordBytes(static_cast<uint32_t>(size));
  if (bytes > kMaxFileBytes) return CreateStatus::kBadSize;
  std::string path;
  host::Place place;
  int e = host::HostPath(name, &path);
  if (!e) e = place.Resolve(path);
  if (e == EINVAL) return CreateStatus::kBadName;
  if (e == host::kOutside) return CreateStatus::kOutside;
  struct stat st;
  if (!e && place.Stat(&st) == 0) return CreateStatus::kExists;
  // Made whole under a name of its own, so that a kill never leaves half a file.
  host::TempFile temp(place);
  if (!e) e = temp.Create(0666);
  uint8_t header[kHeaderBytes] = {};
  std::memcpy(header, kMagic, sizeof kMagic);
  Put16(header + 8, kVersion);
  Put16(header + 10, static_cast<uint16_t>(size));
  Put32(header + 12, static_cast<uint32_t>(count));
  // The space is had now, so that a full disk shows here and not half-way
  // through a run; the records are zero bytes, each an end of file.
  if (!e) e = posix_fallocate(temp.Descriptor(), 0, static_cast<off_t>(bytes));
  if (!e) e = host::WriteAllAt(temp.Descriptor(), header, sizeof header, 0);
  // A journal left beside an older file of this name belongs to none now.
  if (!e) place.Sibling(data_journal::kSuffix).Remove();
  if (!e) e = temp.LinkAsTarget();
  if (e == EEXIST) return CreateStatus::kExists;
  *error = e;
  return e ? CreateStatus::kFailed : CreateStatus::kCreated;
}

OpenStatus DataFile::Open(const std::string& name, bool readOnly, std::string* note) {
  Close();
  std::string path;
  host::Place place;
  int e = host::FindFile(name, host::FileKind::kData, &path, note);
  if (!e) e = place.Resolve(path);
  if (e) return NameStatus(e);
  // Never waits: a FIFO or a device is refused below, not read.
  bool writable = !readOnly;
  int fd = writable ? place.Open(O_RDWR | O_NONBLOCK) : -1;
  if (fd < 0 && (!writable || errno == EACCES || errno == EROFS || errno == EPERM)) {
    writable = false;
    fd = place.Open(O_RDONLY | O_NONBLOCK);
  }
  if (fd < 0)
    return errno == ENOENT || errno == ENOTDIR ? OpenStatus::kMissing : OpenStatus::kFailed;
  struct stat st;
  OpenStatus status = OpenStatus::kFailed;
  uint32_t words = 0, records = 0;
  if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) status = ReadDataHeader(fd, &words, &records);
  SharedFile* shared = nullptr;
  if (status == OpenStatus::kReadWrite) {
    shared = SharedFile::Join(fd, st, std::move(place), words, records);
    if (!shared) status = OpenStatus::kFailed;
  }
  if (status != OpenStatus::kReadWrite) {
    close(fd);
    return status;
  }
  // A statement that a killed program left half-written goes back first.
  shared->Recover(fd);
  // No write bit at all is read-only for everyone: the superuser's open
  // succeeds, but a program must not change a file its owner protected.
  if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) writable = false;
  fd_ = fd;
  shared_ = shared;
  writable_ = writable;
  words_ = words;
  records_ = records;
  tagBytes_ = (words + 7) / 8;
  device_ = st.st_dev;
  inode_ = st.st_ino;
  slots_.clear();
  slots_.emplace_back();
  slots_[0].bytes = std::make_unique<uint8_t[]>(RecordBytes(words));
  current_ = 0;
  error_ = 0;
  return writable ? OpenStatus::kReadWrite : OpenStatus::kReadOnly;
}

void DataFile::Close() {
  if (fd_ < 0) return;
  Commit();
  Unlock();
  shared_->Leave();
  shared_ = nullptr;
  close(fd_);
  fd_ = -1;
  slots_.clear();
  current_ = 0;
}

off_t DataFile::Offset(uint32_t record) const {
  return static_cast<off_t>(kHeaderBytes + uint64_t{record - 1} * RecordBytes(words_));
}

bool DataFile::Fail(int error) {
  error_ = error ? error : EIO;
  return false;
}

bool DataFile::Load(uint32_t record, bool fresh) {
  Slot& current = Current();
  if (current.record == record && (current.Changed() || (!fresh && current.stamp == g_writes)))
    return true;
  // A record the statement under way changed is kept as it stands.
  for (size_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i].record == record && slots_[i].Changed()) {
      current_ = i;
      return true;
    }
  }
  if (current.Changed()) {
    size_t free = 0;
    while (free < slots_.size() && slots_[free].Changed()) ++free;
    if (free == slots_.size()) {
      slots_.emplace_back();
      slots_.back().bytes = std::make_unique<uint8_t[]>(RecordBytes(words_));
    }
    current_ = free;
  }
  Slot& slot = Current();
  slot.record = 0;
  if (int e = host::ReadAllAt(fd_, slot.bytes.get(), RecordBytes(words_), Offset(record)))
    return Fail(e);
  slot.record = record;
  slot.stamp = g_writes;
  return true;
}

void DataFile::Span(const Slot& slot, bool withTags, uint32_t* from, uint32_t* to) const {
  *from = withTags ? slot.from / 8 : tagBytes_ + 2 * slot.from;
  *to = tagBytes_ + 2 * slot.to;
}

void DataFile::Merge(const Slot& slot, uint8_t* fresh, uint32_t from, uint32_t to) const {
  // The tag map has one bit per word, as the map of changed words has.
  for (uint32_t i = from; i < std::min(to, tagBytes_); ++i) {
    uint8_t mask = slot.changed[i];
    fresh[i - from] = static_cast<uint8_t>((fresh[i - from] & ~mask) | (slot.bytes[i] & mask));
  }
  for (uint32_t w = slot.from; w < slot.to; ++w) {
    if (!slot.ChangedWord(w)) continue;
    uint32_t at = tagBytes_ + 2 * w;
    fresh[at - from] = slot.bytes[at];
    fresh[at + 1 - from] = slot.bytes[at + 1];
  }
}

bool DataFile::CommitOne(Slot& slot) {
  uint32_t from, to;
  Span(slot, slot.tagsChanged, &from, &to);
  off_t at = Offset(slot.record) + from;
  if (slot.tagsChanged || slot.gaps) {
    // Between the changed words lie other items: as the file holds them now.
    fresh_.resize(to - from);
    if (int e = host::ReadAllAt(fd_, fresh_.data(), fresh_.size(), at)) return Fail(e);
    Merge(slot, fresh_.data(), from, to);
    std::memcpy(slot.bytes.get() + from, fresh_.data(), fresh_.size());
  }
  int e = host::WriteAllAt(fd_, slot.bytes.get() + from, to - from, at);
  return e ? Fail(e) : true;
}

bool DataFile::CommitJournaled() {
  int e = shared_->BeginJournal(fd_);
  // A folder that takes no journal: the records are written without one.
  bool journaled = e == 0;
  if (e && e != EACCES && e != EROFS && e != EPERM) return Fail(e);
  journal_.Start(words_, records_);
  for (Slot& slot : slots_) {
    if (!slot.Changed()) continue;
    uint32_t from, to;
    Span(slot, true, &from, &to);
    fresh_.resize(to - from);
    if ((e = host::ReadAllAt(fd_, fresh_.data(), fresh_.size(), Offset(slot.record) + from))) break;
    journal_.Add(slot.record, from, fresh_.data(), to - from);
    Merge(slot, fresh_.data(), from, to);
    std::memcpy(slot.bytes.get() + from, fresh_.data(), fresh_.size());
  }
  const std::vector<uint8_t>& bytes = journal_.Finish();
  if (!e && journaled) e = shared_->WriteJournal(bytes);
  if (e) {
    if (journaled) shared_->EndJournal(false);
    return Fail(e);
  }
  for (Slot& slot : slots_) {
    if (!slot.Changed()) continue;
    uint32_t from, to;
    Span(slot, true, &from, &to);
    if ((e = host::WriteAllAt(fd_, slot.bytes.get() + from, to - from, Offset(slot.record) + from)))
      break;
  }
  bool restored = true;
  if (e) {
    // Every record goes back as it was; should that fail too, the journal stays for the next open.
    std::vector<data_journal::Entry> entries;
    data_journal::Parse(bytes.data(), bytes.size(), words_, records_, &entries);
    for (const data_journal::Entry& old : entries)
      restored =
          host::WriteAllAt(fd_, old.bytes, old.length, Offset(old.record) + old.offset) == 0 &&
          restored;
  }
  if (journaled) shared_->EndJournal(restored);
  return e ? Fail(e) : true;
}

bool DataFile::Commit() {
  size_t changed = 0, which = 0;
  for (size_t i = 0; i < slots_.size(); ++i)
    if (slots_[i].Changed()) ++changed, which = i;
  if (changed == 0) return true;
  bool ok;
  uint32_t from, to;
  Span(slots_[which], slots_[which].tagsChanged, &from, &to);
  uint64_t start = static_cast<uint64_t>(Offset(slots_[which].record)) + from;
  if (changed == 1 && start / kPage == (start + (to - from) - 1) / kPage)
    ok = CommitOne(slots_[which]);
  else
    ok = CommitJournaled();
  ++g_writes;
  for (Slot& slot : slots_) {
    if (slot.Changed())
      std::memset(slot.changed + slot.from / 8, 0, (slot.to + 7) / 8 - slot.from / 8);
    slot.from = slot.to = 0;
    slot.tagsChanged = slot.gaps = false;
    slot.stamp = g_writes;
    if (!ok) slot.record = 0;  // what the file holds is unknown now: read it again
  }
  return ok;
}

host::LockWait DataFile::Lock() {
  if (locked_) return host::LockWait::kLocked;
  host::LockWait wait = shared_->Lock();
  if (wait == host::LockWait::kLocked)
    locked_ = true;
  else if (wait == host::LockWait::kFailed)
    error_ = errno;
  return wait;
}

void DataFile::Unlock() {
  if (!locked_) return;
  shared_->Unlock();
  locked_ = false;
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

void DataFile::Changing(uint32_t word, uint32_t count) {
  Slot& slot = Current();
  for (uint32_t w = word; w < word + count; ++w)
    slot.changed[w / 8] |= static_cast<uint8_t>(1u << (w % 8));
  if (slot.Changed()) {
    if (word > slot.to || word + count < slot.from) slot.gaps = true;
    slot.from = std::min(slot.from, word);
    slot.to = std::max(slot.to, word + count);
  } else {
    slot.from = word;
    slot.to = word + count;
  }
}

void DataFile::SetTag(uint32_t word, bool on) {
  uint8_t bit = static_cast<uint8_t>(1u << (word % 8));
  uint8_t& tags = Current().bytes[word / 8];
  uint8_t now = on ? static_cast<uint8_t>(tags | bit) : static_cast<uint8_t>(tags & ~bit);
  if (now != tags) Current().tagsChanged = true;
  tags = now;
}

void DataFile::PutNumber(uint32_t word, float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  SetTag(word, true);
  SetTag(word + 1, false);
  Put16(Word(word), static_cast<uint16_t>(bits));
  Put16(Word(word + 1), static_cast<uint16_t>(bits >> 16));
  Changing(word, kNumberWords);
}

void DataFile::PutString(uint32_t word, std::string_view text) {
  uint32_t size = StringWords(text.size());
  for (uint32_t w = word; w < word + size; ++w) SetTag(w, false);
  Put16(Word(word), static_cast<uint16_t>(text.size() + 2));
  uint8_t* to = Word(word + 1);
  if (!text.empty()) std::memcpy(to, text.data(), text.size());
  if (text.size() % 2) to[text.size()] = 0;
  Changing(word, size);
}

void DataFile::PutControl(uint32_t word, uint16_t value) {
  SetTag(word, false);
  Put16(Word(word), value);
  Changing(word, 1);
}
