// Lines from a pipe, a file or a string, delivered whole as they come.
#include <errno.h>
#include <poll.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "console/console.h"
#include "console/key_source.h"

namespace {

// Every byte is looked at once, and a line that never ends costs no more memory
// than its first kLineMax characters: the rest is dropped as it arrives.
class PipedInput final : public KeySource {
 public:
  explicit PipedInput(int fd) : fd_(fd) {}
  explicit PipedInput(std::string_view text) : fd_(-1), data_(text), eof_(true) {}

  int WaitKey(int) override { return kEnd; }
  bool DeliversLines() const override { return true; }

  int WaitLine(char* line, int timeoutMs) override {
    for (;;) {
      if (TakeLine()) return Deliver(line);
      if (eof_) {
        if (len_ == 0 && !pendingCr_ && !started_) return kEnd;
        if (pendingCr_) Keep('\r');  // a carriage return at the very end is text
        return Deliver(line);
      }
      pollfd pfd{fd_, POLLIN, 0};
      int ready = poll(&pfd, 1, timeoutMs);
      if (ready <= 0) return kNone;  // timeout, or a signal such as Ctrl+C
      char buf[64 * 1024];
      ssize_t r = read(fd_, buf, sizeof buf);
      if (r < 0) {
        if (errno == EINTR || errno == EAGAIN) return kNone;
        eof_ = true;
      } else if (r == 0) {
        eof_ = true;
      } else {
        data_.assign(buf, static_cast<size_t>(r));
        pos_ = 0;
      }
      timeoutMs = 0;
    }
  }

 private:
  // Moves bytes of data_ into the line being built; true once a line feed ends it.
  bool TakeLine() {
    while (pos_ < data_.size()) {
      char c = data_[pos_++];
      started_ = true;
      if (c == '\n') return true;  // a carriage return just before is dropped
      if (pendingCr_) Keep('\r');
      pendingCr_ = c == '\r';
      if (!pendingCr_ && c != '\0') Keep(c);  // NUL bytes are dropped: lines are C strings
    }
    if (pos_ == data_.size() && !data_.empty()) {
      data_.clear();
      pos_ = 0;
    }
    return false;
  }
  void Keep(char c) {
    if (len_ < Console::kLineMax) line_[len_++] = c;
  }
  int Deliver(char* line) {
    int n = len_;
    std::memcpy(line, line_, static_cast<size_t>(n));
    line[n] = '\0';
    len_ = 0;
    pendingCr_ = started_ = false;
    return n;
  }

  int fd_;
  std::string data_;  // bytes read and not yet taken
  size_t pos_ = 0;
  bool eof_ = false;
  char line_[Console::kLineMax];  // the line being built, its first kLineMax characters
  int len_ = 0;
  bool pendingCr_ = false;  // a carriage return waits to see whether a line feed follows
  bool started_ = false;    // the line being built has bytes, kept or not
};

}  // namespace

std::unique_ptr<KeySource> MakePipedInput(int fd) { return std::make_unique<PipedInput>(fd); }

std::unique_ptr<KeySource> MakeStringInput(std::string_view text) {
  return std::make_unique<PipedInput>(text);
}
