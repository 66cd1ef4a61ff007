#include "files/text_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cfloat>
#include <cstdlib>
#include <cstring>

#include "platform/signals.h"
#include "value/string_value.h"

namespace {

constexpr size_t kChunk = 64 * 1024;  // read and write in pieces of this size
// A line longer than the longest string is never held: it overflows.
constexpr size_t kLongestLine = kMaxStringLength;

BaseList_T<TextFile, false>& OpenFiles() {
  static BaseList_T<TextFile, false> files;
  return files;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsHexDigit(char c) { return IsDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f'); }

// The whole of text as a number of the float range, or false.
bool ParseNumber(std::string_view text, float* value) {
  bool negative = false;
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
    negative = text[0] == '-';
    text.remove_prefix(1);
  }
  double v = 0;
  if (text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x') {
    for (char c : text.substr(2)) {
      if (!IsHexDigit(c)) return false;
      v = v * 16 + (c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
    }
  } else {
    // Digits with an optional point and exponent: no "inf", "nan" or hexadecimal floats.
    size_t i = 0, digits = 0;
    for (; i < text.size() && IsDigit(text[i]); ++i) ++digits;
    if (i < text.size() && text[i] == '.')
      for (++i; i < text.size() && IsDigit(text[i]); ++i) ++digits;
    if (digits == 0) return false;
    if (i < text.size() && (text[i] | 0x20) == 'e') {
      ++i;
      if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
      size_t exponent = i;
      while (i < text.size() && IsDigit(text[i])) ++i;
      if (i == exponent) return false;
    }
    if (i != text.size()) return false;
    // Checked above to be all digits, point and exponent: strtod takes it whole
    // (the web build's library has no from_chars for floating point).
    char buffer[64];
    std::string longer;
    const char* digitsText = buffer;
    if (text.size() < sizeof buffer) {
      std::memcpy(buffer, text.data(), text.size());
      buffer[text.size()] = '\0';
    } else {
      longer.assign(text);
      digitsText = longer.c_str();
    }
    v = std::strtod(digitsText, nullptr);
  }
  if (!(v <= FLT_MAX)) return false;
  *value = static_cast<float>(negative ? -v : v);
  return true;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

}  // namespace

bool CutTextItem(std::string_view rest, TextItem* item, std::string* scratch) {
  size_t start = 0;
  while (start < rest.size() && rest[start] == ' ') ++start;
  if (start == rest.size()) return false;
  size_t comma = rest.find(',', start);
  *item = TextItem{};
  if (rest[start] == '"') {
    // A quoted string: "" inside is one quote; a comma inside is text.
    scratch->clear();
    size_t i = start + 1;
    bool closed = false;
    while (i < rest.size()) {
      char c = rest[i++];
      if (c != '"') {
        scratch->push_back(c);
      } else if (i < rest.size() && rest[i] == '"') {
        scratch->push_back('"');
        ++i;
      } else {
        closed = true;
        break;
      }
    }
    while (i < rest.size() && rest[i] == ' ') ++i;
    if (closed && (i == rest.size() || rest[i] == ',')) {
      item->text = *scratch;
      item->endsLine = i == rest.size();
      item->length = item->endsLine ? i : i + 1;
      return true;
    }
    // Not a string as written: the text up to the comma after it, or to the
    // end of the line when the quote never closes.
    comma = closed ? rest.find(',', i) : std::string_view::npos;
  }
  item->endsLine = comma == std::string_view::npos;
  item->length = item->endsLine ? rest.size() : comma + 1;
  item->text = Trimmed(rest.substr(start, (item->endsLine ? rest.size() : comma) - start));
  item->isNumber = ParseNumber(item->text, &item->number);
  return true;
}

OpenStatus TextFile::Open(const std::string& name, bool readOnly, bool create, bool append,
                          std::string* note) {
  Close();
  std::string path;
  host::Place place;
  int e = host::FindFile(name, host::FileKind::kData, &path, note);
  if (!e) e = place.Resolve(path);
  if (e) return NameStatus(e);
  // Never waits: a FIFO or a device is refused below, not read.
  int flags = O_NONBLOCK | (create ? O_CREAT : 0);
  bool writable = !readOnly;
  int fd = writable ? place.Open(O_RDWR | flags, 0666) : -1;
  if (fd < 0 && (!writable || errno == EACCES || errno == EROFS || errno == EPERM)) {
    writable = false;
    fd = place.Open(O_RDONLY | O_NONBLOCK);
  }
  if (fd < 0)
    return errno == ENOENT || errno == ENOTDIR ? OpenStatus::kMissing : OpenStatus::kFailed;
  struct stat st;
  uint32_t words, records;
  // A data file asked for as text is never written over with lines.
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) ||
      (create && ReadDataHeader(fd, &words, &records) != OpenStatus::kNotData)) {
    close(fd);
    return OpenStatus::kFailed;
  }
  // No write bit at all is read-only for everyone, the superuser included.
  if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) writable = false;
  // Appending goes to the end as the system finds it at each write, so that
  // two programs adding to one log keep each other's lines.
  if (append && writable) fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_APPEND);
  fd_ = fd;
  writable_ = writable;
  append_ = append;
  replacing_ = wrote_ = false;
  device_ = st.st_dev;
  inode_ = st.st_ino;
  error_ = 0;
  inPos_ = inEnd_ = lineBytes_ = 0;
  inOffset_ = outOffset_ = 0;
  lineEnd_ = -1;
  afterComma_ = false;
  line_ = item_ = 1;
  column_ = 0;
  out_.clear();
  OpenFiles().Append(this);
  SetFileFlushHook(FlushAll);
  return writable ? OpenStatus::kText : OpenStatus::kTextReadOnly;
}

int TextFile::Close() {
  if (fd_ < 0) return 0;
  int error = Flush();
  Unlink();
  close(fd_);
  fd_ = -1;
  writable_ = false;
  in_.reset();
  inSize_ = 0;
  out_ = std::string();
  scratch_ = std::string();
  return error;
}

void TextFile::FlushAll() {
  for (TextFile* file = OpenFiles().First(); file; file = file->Next()) file->Flush();
}

// --- Reading.

bool TextFile::Fill() {
  // What this process wrote, through any file number, is in the file first.
  FlushAll();
  if (inPos_ > 0) {
    std::memmove(in_.get(), in_.get() + inPos_, inEnd_ - inPos_);
    inOffset_ += static_cast<off_t>(inPos_);
    inEnd_ -= inPos_;
    inPos_ = 0;
  }
  if (inEnd_ == inSize_) {
    // A line longer than the buffer: room for it, up to the longest string and its line end.
    size_t size = inSize_ ? std::min(inSize_ * 2, kLongestLine + 2) : kChunk;
    if (size == inSize_) return false;
    std::unique_ptr<char[]> grown(new char[size]);
    if (inEnd_) std::memcpy(grown.get(), in_.get(), inEnd_);
    in_ = std::move(grown);
    inSize_ = size;
  }
  for (;;) {
    ssize_t n =
        pread(fd_, in_.get() + inEnd_, inSize_ - inEnd_, inOffset_ + static_cast<off_t>(inEnd_));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) error_ = errno;
    if (n <= 0) return false;
    inEnd_ += static_cast<size_t>(n);
    return true;
  }
}

TextFile::Read TextFile::PeekLine(std::string_view* line) {
  for (;;) {
    const char* start = in_.get() + inPos_;
    size_t available = inEnd_ - inPos_;
    const char* end = nullptr;
    // Items of one long line are peeked one after another: its end is found once.
    if (lineEnd_ >= inOffset_ + static_cast<off_t>(inPos_) &&
        lineEnd_ < inOffset_ + static_cast<off_t>(inEnd_))
      end = in_.get() + (lineEnd_ - inOffset_);
    else if (available)
      end = static_cast<const char*>(std::memchr(start, '\n', available));
    if (end) {
      lineEnd_ = inOffset_ + (end - in_.get());
      lineBytes_ = static_cast<size_t>(end - start) + 1;
      size_t length = lineBytes_ - 1;
      if (length > 0 && start[length - 1] == '\r') --length;
      *line = std::string_view(start, length);
      return length > kLongestLine ? kOverflow : kOk;
    }
    if (Fill()) continue;
    if (error_) return kError;
    if (inEnd_ - inPos_ == inSize_ && inSize_ >= kLongestLine + 2) return kOverflow;
    // At the end, only the empty rest of a last line that a comma ends is left.
    if (inEnd_ == inPos_ && !afterComma_) return kEnd;
    // The last line has no line end: it is a line all the same.
    lineBytes_ = inEnd_ - inPos_;
    *line = std::string_view(in_.get() + inPos_, lineBytes_);
    return lineBytes_ > kLongestLine ? kOverflow : kOk;
  }
}

void TextFile::TakeLine() {
  inPos_ += lineBytes_;
  lineBytes_ = 0;
  afterComma_ = false;
  ++line_;
  item_ = 1;
}

TextFile::Read TextFile::PeekItem(TextItem* item) {
  for (;;) {
    std::string_view line;
    if (Read r = PeekLine(&line); r != kOk) return r;
    if (CutTextItem(line, item, &scratch_)) return kOk;
    if (afterComma_) {
      // A comma at the end of a line: one empty string follows it.
      *item = TextItem{};
      item->endsLine = true;
      item->length = line.size();
      return kOk;
    }
    TakeLine();  // a line of blanks holds no item
  }
}

void TextFile::TakeItem(const TextItem& item) {
  if (item.endsLine) {
    TakeLine();
    return;
  }
  inPos_ += item.length;
  afterComma_ = true;
  ++item_;
}

// --- Writing.

void TextFile::Print(char c) {
  // PRINT ends its lines with CR LF; a file's lines end with LF alone.
  if (c == '\r') {
    column_ = 0;
    return;
  }
  out_ += c;
  column_ = c == '\n' ? 0 : column_ + 1;
  if (out_.size() >= kChunk) Write(false);
}

void TextFile::Print(std::string_view text) {
  out_ += text;
  size_t newline = text.rfind('\n');
  column_ = newline == std::string_view::npos ? column_ + static_cast<int64_t>(text.size())
                                              : static_cast<int64_t>(text.size() - newline - 1);
  if (out_.size() >= kChunk) Write(false);
}

void TextFile::StartWriting() { wrote_ = true; }

// Writes the buffered bytes, or (not all) its whole lines, keeping an
// unfinished one for later unless it alone fills the buffer, so that two
// programs appending to one file keep their lines whole. A failed write is
// kept in error_ and its bytes dropped.
void TextFile::Write(bool all) {
  size_t whole = out_.size();
  if (!all && whole < 2 * kChunk) {
    size_t newline = out_.rfind('\n');
    if (newline != std::string::npos) whole = newline + 1;
  }
  int error = 0;
  if (!replacing_ && !append_) {
    // The first write replaces the old text: reading goes on at its offset in the new.
    replacing_ = true;
    if (ftruncate(fd_, 0) != 0) error = errno;
    inOffset_ += static_cast<off_t>(inPos_);
    inPos_ = inEnd_ = 0;
    lineEnd_ = -1;
  }
  if (!error && whole > 0) {
    error = host::WriteAllAt(fd_, out_.data(), whole, append_ ? -1 : outOffset_);
    if (!error && !append_) outOffset_ += static_cast<off_t>(whole);
  }
  out_.erase(0, error ? out_.size() : whole);
  if (error) error_ = error;
}

int TextFile::Flush() {
  if (!wrote_ || (out_.empty() && (replacing_ || append_))) return 0;
  int before = error_;
  error_ = 0;
  Write(true);
  int error = error_;
  if (!error_) error_ = before;
  return error;
}
