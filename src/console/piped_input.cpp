// Lines from a pipe, a file or a string, delivered whole as they come.
#include <errno.h>
#include <poll.h>
#include <unistd.h>

#include <string>

#include "console/console.h"
#include "console/key_source.h"

namespace {

class PipedInput final : public KeySource {
 public:
  explicit PipedInput(int fd) : fd_(fd) {}
  explicit PipedInput(std::string_view text) : fd_(-1), data_(text), eof_(true) {}

  int WaitKey(int) override { return kEnd; }
  bool DeliversLines() const override { return true; }

  int WaitLine(char* line, int timeoutMs) override {
    for (;;) {
      int n = TakeLine(line);
      if (n != kNone) return n;
      if (eof_) return kEnd;
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
        data_.append(buf, static_cast<size_t>(r));
      }
      timeoutMs = 0;
    }
  }

 private:
  // The next complete line (or the last one, without LF, at the end), else kNone.
  int TakeLine(char* line) {
    if (pos_ == data_.size()) {
      data_.clear();
      pos_ = 0;
      return kNone;
    }
    size_t lf = data_.find('\n', pos_);
    size_t end = lf;
    if (lf == std::string::npos) {
      if (!eof_) return kNone;
      end = data_.size();
    }
    size_t stop = end;
    if (lf != std::string::npos && stop > pos_ && data_[stop - 1] == '\r') --stop;
    int n = 0;
    // NUL bytes are dropped: the line is handed on as a C string.
    for (size_t i = pos_; i < stop && n < Console::kLineMax; ++i)
      if (data_[i] != '\0') line[n++] = data_[i];
    line[n] = '\0';
    pos_ = lf == std::string::npos ? data_.size() : lf + 1;
    if (pos_ > 64 * 1024) {
      data_.erase(0, pos_);
      pos_ = 0;
    }
    return n;
  }

  int fd_;
  std::string data_;
  size_t pos_ = 0;
  bool eof_ = false;
};

}  // namespace

std::unique_ptr<KeySource> MakePipedInput(int fd) { return std::make_unique<PipedInput>(fd); }

std::unique_ptr<KeySource> MakeStringInput(std::string_view text) {
  return std::make_unique<PipedInput>(text);
}
