#include "files/file_units.h"

#include <cerrno>
#include <cmath>

#include "base/convert.h"
#include "base/errors.h"
#include "stmt/targets.h"

namespace {
constexpr float kTypeNumber = 1, kTypeString = 2, kTypeEndFile = 3, kTypeEndRecord = 4;
}  // namespace

OpenStatus FileUnit::Open(const std::string& path, bool readOnly, Ask ask, std::string* note) {
  Close();
  OpenStatus status;
  if (ask != Ask::kAny) {
    status = text_.Open(path, readOnly, true, ask == Ask::kAppend, note);
  } else {
    status = file_.Open(path, readOnly, note);
    if (status == OpenStatus::kNotData) status = text_.Open(path, readOnly, false, false, note);
  }
  Enter(1);
  return status;
}

ErrorCode FileUnit::Close() {
  file_.Close();
  int error = text_.Close();
  Enter(1);
  return !error                                                 ? 0
         : error == ENOSPC || error == EFBIG || error == EDQUOT ? err::kNoRoom
                                                                : err::kFileError;
}

void FileUnit::Enter(uint32_t record) {
  record_ = record;
  word_ = 0;
  item_ = 1;
  entered_ = true;
}

FileUnit::Result FileUnit::Failed(uint32_t code) {
  SetRunError(code);
  return kFail;
}

FileUnit::Result FileUnit::RecordsOnly() { return IsText() ? Failed(err::kNotOnAsciiFile) : kOk; }

FileUnit::Result FileUnit::TextFailed(TextFile::Read read) {
  switch (read) {
    case TextFile::kOk:
      return kOk;
    case TextFile::kEnd:
      return kEnd;
    case TextFile::kOverflow:
      return Failed(err::kStringOverflow);
    case TextFile::kError:
      break;
  }
  text_.ClearError();
  return Failed(err::kFileError);
}

FileUnit::Result FileUnit::TextWritten() {
  int error = text_.Error();
  if (!error) return kOk;
  text_.ClearError();
  return Failed(error == ENOSPC || error == EFBIG || error == EDQUOT ? err::kNoRoom
                                                                     : err::kFileError);
}

// A whole line for LINPUT #. One longer than the target's declared length
// stays to be read again, as does one whose target fails.
FileUnit::Result FileUnit::ReadLine(Target& target) {
  if (!IsText()) return Failed(err::kNotOnRecordFile);
  std::string_view line;
  if (Result r = TextFailed(text_.PeekLine(&line)); r != kOk) return r;
  if (line.size() > target.Room()) return Failed(err::kStringOverflow);
  // A subscript of the target may read the file (TYP) and move its buffer.
  scratch_.assign(line);
  target.Assign(std::string_view(scratch_));
  if (g_err.run) return kFail;
  text_.TakeLine();
  return kOk;
}

// An item of a text file, as INPUT takes a typed one: a number for a numeric
// target; anything for a string one, a number as it was written.
FileUnit::Result FileUnit::ReadText(Target& target) {
  TextItem item;
  if (Result r = TextFailed(text_.PeekItem(&item)); r != kOk) return r;
  if (target.IsString()) {
    if (item.text.size() > target.Room()) return Failed(err::kStringOverflow);
    scratch_.assign(item.text);
    target.Assign(std::string_view(scratch_));
  } else {
    if (!item.isNumber) return Failed(err::kDataWrongType);  // the item stays
    target.Assign(item.number);
  }
  if (g_err.run) return kFail;
  text_.TakeItem(item);
  return kOk;
}

FileUnit::Result FileUnit::FileFailed() {
  switch (file_.Error()) {
    case ENOSPC:
    case EFBIG:
    case EDQUOT:
      return Failed(err::kNoRoom);
    case EINTR:
      return Failed(err::kBreak);
    default:
      return Failed(err::kFileError);
  }
}

// Another program may have written the record since it was read: entering it reads it again.
FileUnit::Result FileUnit::Load() {
  if (!file_.Load(record_, entered_)) return FileFailed();
  entered_ = false;
  return kOk;
}

FileUnit::Result FileUnit::Seek(float record) {
  if (Result r = RecordsOnly(); r != kOk) return r;
  if (!file_.Commit()) return FileFailed();
  int64_t r;
  if (std::isnan(record) || !conv::RoundIn(record, 1, data_file::kMaxRecords, &r))
    return Failed(err::kArgOutOfRange);
  if (r > file_.Records()) return kEnd;
  Enter(static_cast<uint32_t>(r));
  return kOk;
}

FileUnit::Result FileUnit::Unlock() {
  if (Result r = RecordsOnly(); r != kOk) return r;
  file_.Unlock();
  return kOk;
}

FileUnit::Result FileUnit::Lock() {
  if (Result r = RecordsOnly(); r != kOk) return r;
  switch (file_.Lock()) {
    case host::LockWait::kLocked:
      return kOk;
    case host::LockWait::kStopped:
      return kEnd;
    case host::LockWait::kFailed:
      break;
  }
  return FileFailed();
}

FileUnit::Result FileUnit::Next(FileItem* item, bool bound) {
  for (;;) {
    if (Result r = Load(); r != kOk) return r;
    *item = file_.ItemAt(word_);
    switch (item->kind) {
      case FileItem::kNumber:
      case FileItem::kString:
        return kOk;
      case FileItem::kEndFile:
        return kEnd;
      case FileItem::kDamaged:
        return Failed(err::kFileDamaged);
      case FileItem::kEndRecord:
        if (bound || record_ >= file_.Records()) return kEnd;
        Enter(record_ + 1);
        break;
    }
  }
}

FileUnit::Result FileUnit::Read(Target& target, bool bound) {
  if (IsText()) return ReadText(target);
  FileItem item;
  if (Result r = Next(&item, bound); r != kOk) return r;
  bool isString = item.kind == FileItem::kString;
  if (isString != target.IsString()) return Failed(err::kDataWrongType);  // the item stays
  word_ += item.words;
  ++item_;
  if (!isString) {
    target.Assign(item.number);
    return kOk;
  }
  // A subscript of the target may read another record into the buffer first.
  scratch_.assign(item.text);
  target.Assign(std::string_view(scratch_));
  return kOk;
}

FileUnit::Result FileUnit::Room(uint32_t size, bool bound) {
  if (!file_.Writable()) return Failed(err::kFileReadOnly);
  uint32_t words = file_.Words();
  if (size > words) return Failed(err::kStringOverflow);  // fits in no record of the file
  for (;;) {
    if (Result r = Load(); r != kOk) return r;
    if (word_ + size <= words) return kOk;
    if (bound) return kEnd;
    // Serial writing flows into the next record; the rest of this one is marked unused.
    if (word_ < words) file_.PutEndRecord(word_);
    if (record_ >= file_.Records()) return kEnd;
    Enter(record_ + 1);
  }
}

FileUnit::Result FileUnit::WriteNumber(float value, bool bound) {
  if (Result r = Room(data_file::kNumberWords, bound); r != kOk) return r;
  file_.PutNumber(word_, value);
  word_ += data_file::kNumberWords;
  ++item_;
  return kOk;
}

FileUnit::Result FileUnit::WriteString(std::string_view text, bool bound) {
  uint64_t size = data_file::StringWords(text.size());
  if (size > file_.Words()) return Failed(err::kStringOverflow);
  if (Result r = Room(static_cast<uint32_t>(size), bound); r != kOk) return r;
  file_.PutString(word_, text);
  word_ += static_cast<uint32_t>(size);
  ++item_;
  return kOk;
}

FileUnit::Result FileUnit::WriteEndFile() {
  if (!file_.Writable()) return Failed(err::kFileReadOnly);
  if (Result r = Load(); r != kOk) return r;
  if (word_ >= file_.Words()) {
    // A full record: the mark opens the next one, if there is one.
    if (record_ >= file_.Records()) return kOk;
    Enter(record_ + 1);
    if (Result r = Load(); r != kOk) return r;
  }
  file_.PutEndFile(word_);
  return kOk;
}

FileUnit::Result FileUnit::FinishWrite(bool endRecord) {
  if (endRecord && file_.Writable() && word_ < file_.Words() && Load() == kOk)
    file_.PutEndRecord(word_);
  return file_.Commit() ? kOk : FileFailed();
}

FileUnit::Result FileUnit::UpdateNumber(float value) {
  if (Result r = RecordsOnly(); r != kOk) return r;
  if (!file_.Writable()) return Failed(err::kFileReadOnly);
  FileItem item;
  if (Result r = Next(&item, false); r != kOk) return r;
  if (item.kind != FileItem::kNumber) return Failed(err::kDataWrongType);
  file_.PutNumber(word_, value);
  word_ += item.words;
  ++item_;
  return kOk;
}

FileUnit::Result FileUnit::UpdateString(std::string_view text) {
  if (Result r = RecordsOnly(); r != kOk) return r;
  if (!file_.Writable()) return Failed(err::kFileReadOnly);
  FileItem item;
  if (Result r = Next(&item, false); r != kOk) return r;
  if (item.kind != FileItem::kString) return Failed(err::kDataWrongType);
  if (text.size() > item.text.size()) return Failed(err::kStringOverflow);
  // The item keeps its length, so the items after it stay where they are.
  scratch_.assign(text);
  scratch_.append(item.text.size() - text.size(), ' ');
  file_.PutString(word_, scratch_);
  word_ += item.words;
  ++item_;
  return kOk;
}

FileUnit::Result FileUnit::Skip(uint64_t count, uint64_t* left) {
  *left = count;
  if (Result r = RecordsOnly(); r != kOk) return r;
  while (*left > 0) {
    FileItem item;
    Result r = Next(&item, false);
    if (r == kEnd) return kOk;
    if (r != kOk) return r;
    word_ += item.words;
    ++item_;
    --*left;
  }
  return kOk;
}

float FileUnit::Type(bool acrossRecords) {
  if (IsText()) {
    TextItem next;
    TextFile::Read r = text_.PeekItem(&next);
    if (r == TextFile::kOk) return next.isNumber ? kTypeNumber : kTypeString;
    if (r == TextFile::kError) text_.ClearError();
    return r == TextFile::kOverflow ? kTypeString : kTypeEndFile;
  }
  uint32_t record = record_, word = word_, item = item_;
  bool entered = entered_;
  FileItem next;
  Result r = Next(&next, !acrossRecords);
  float type = kTypeEndFile;
  if (r == kOk) {
    type = next.kind == FileItem::kString ? kTypeString : kTypeNumber;
  } else if (r == kEnd && !acrossRecords && next.kind == FileItem::kEndRecord &&
             record_ < file_.Records()) {
    type = kTypeEndRecord;
  }
  record_ = record;
  word_ = word;
  item_ = item;
  entered_ = entered;
  return type;
}

FileUnit* FileUnits::Unit(float number) {
  int64_t n;
  if (!conv::RoundIn(number, 1, kUnits, &n)) {
    SetRunError(err::kBadFileNumber);
    return nullptr;
  }
  return &units_[n - 1];
}

FileUnit* FileUnits::OpenUnit(float number) {
  FileUnit* unit = Unit(number);
  if (unit && !unit->IsOpen()) {
    SetRunError(err::kFileNotOpen);
    return nullptr;
  }
  return unit;
}

bool FileUnits::Holds(dev_t device, ino_t inode) const {
  for (const FileUnit& unit : units_) {
    if (unit.File().IsOpen() && unit.File().Device() == device && unit.File().Inode() == inode)
      return true;
    if (unit.IsText() && unit.Text().Device() == device && unit.Text().Inode() == inode)
      return true;
  }
  return false;
}

ErrorCode FileUnits::CloseAll() {
  ErrorCode first = 0;
  for (FileUnit& unit : units_) {
    ErrorCode code = unit.Close();
    if (!first) first = code;
    unit.endTarget = nullptr;
  }
  declared = 0;
  return first;
}
