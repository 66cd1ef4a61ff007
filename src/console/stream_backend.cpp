// Output to a pipe or a file: only the characters drawn and the line ends.
#include <errno.h>
#include <poll.h>
#include <unistd.h>

#include <climits>
#include <cstring>

#include "console/console_backend.h"
#include "platform/break_flag.h"
#include "platform/signals.h"

namespace {

class StreamBackend final : public ConsoleBackend {
 public:
  StreamBackend(int fd, std::string* out) : fd_(fd), out_(out) {}
  ~StreamBackend() override { FinalFlush(0, 0); }

  // No right or bottom edge: the model never inserts a line break of its own.
  void Size(int* cols, int* rows) override {
    *cols = SHRT_MAX;
    *rows = SHRT_MAX;
  }
  void Draw(int, int, char c, uint16_t) override {
    if (pendingCr_) {
      pendingCr_ = false;
      Put('\r');
    }
    Put(c);
  }
  // A CR directly followed by a LF is one line end.
  void CarriageReturn() override {
    if (pendingCr_) Put('\r');
    pendingCr_ = true;
  }
  void LineFeed() override {
    pendingCr_ = false;
    Put('\n');
  }
  void Fill(int, int, long, uint16_t, bool) override {}
  void ScrollUp(uint16_t) override {}
  void SetAttr(uint16_t) override {}
  void ShowCursor(bool) override {}
  void SetTitle(const char*) override {}
  void Flush(int, int) override { Drain(); }
  void FinalFlush(int, int) override {
    if (pendingCr_) {
      pendingCr_ = false;
      Put('\r');
    }
    Drain();
  }

 private:
  void Put(char c) {
    if (n_ == 0 && !out_) NoteOutputPending();
    if (n_ == sizeof buf_) Drain();
    buf_[n_++] = c;
  }
  void Drain() {
    if (out_) {
      out_->append(buf_, n_);
    } else {
      const char* p = buf_;
      size_t left = gone_ ? 0 : n_;
      while (left > 0) {
        ssize_t w = write(fd_, p, left);
        if (w > 0) {
          p += w;
          left -= static_cast<size_t>(w);
        } else if (w < 0 && errno == EAGAIN) {
          pollfd pfd{fd_, POLLOUT, 0};
          poll(&pfd, 1, 100);  // an output left non-blocking by whoever passed it on
        } else if (w < 0 && errno == EINTR && !EndPending()) {
          continue;
        } else if (w < 0 && errno == EINTR) {
          break;  // the process is ending: a stalled reader loses the rest
        } else {
          // The reader went away: from now on output is dropped, the run goes on.
          gone_ = true;
          OutputLost();
          break;
        }
      }
    }
    n_ = 0;
  }

  int fd_;
  std::string* out_;
  bool pendingCr_ = false;
  bool gone_ = false;  // the output failed for good
  size_t n_ = 0;
  char buf_[64 * 1024];
};

}  // namespace

std::unique_ptr<ConsoleBackend> MakeStreamBackend(int fd) {
  return std::make_unique<StreamBackend>(fd, nullptr);
}

std::unique_ptr<ConsoleBackend> MakeStringBackend(std::string* out) {
  return std::make_unique<StreamBackend>(-1, out);
}
