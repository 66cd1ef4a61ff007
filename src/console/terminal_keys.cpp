// Keys from a terminal in raw mode, function and cursor keys decoded to their key codes.
#include <errno.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "console/key_source.h"
#include "console/line_editor.h"
#include "platform/terminal_restore.h"

#ifdef HAVE_TERMINFO
#include <term.h>
#undef lines
#undef columns
#endif

namespace {

constexpr int kEscWaitMs = 30;  // a lone ESC is the Escape key

std::string g_typedAhead;  // keys a terminal query read before the key reader

struct KeySeq {
  std::string bytes;
  int code;
};

// The terminal's own key sequences, read once: the terminfo entry stays loaded for good.
const std::vector<KeySeq>& TerminfoKeys([[maybe_unused]] int fd) {
  static const std::vector<KeySeq> keys = [fd] {
    std::vector<KeySeq> seqs;
#ifdef HAVE_TERMINFO
    int err = 0;
    if (setupterm(nullptr, fd, &err) != 0) return seqs;
    static const struct {
      const char* cap;
      int code;
    } kCaps[] = {{"kf1", key::kF1},    {"kf2", key::kF2},     {"kf3", key::kF3},
                 {"kf4", key::kF4},    {"kf5", key::kF5},     {"kcub1", key::kLeft},
                 {"kcuu1", key::kUp},  {"kcud1", key::kDown}, {"kcuf1", key::kRight},
                 {"kich1", key::kIns}, {"kdch1", key::kDel}};
    for (const auto& c : kCaps) {
      char* s = tigetstr(const_cast<char*>(c.cap));
      if (s && s != reinterpret_cast<char*>(-1) && s[0] == '\x1b' && s[1])
        seqs.push_back({s, c.code});
    }
    // Terminals send the application-mode form too; accept ESC [ and ESC O alike.
    size_t n = seqs.size();
    for (size_t i = 0; i < n; ++i) {
      std::string alt = seqs[i].bytes;
      if (alt.size() == 3 && (alt[1] == 'O' || alt[1] == '[')) {
        alt[1] = alt[1] == 'O' ? '[' : 'O';
        seqs.push_back({alt, seqs[i].code});
      }
    }
#endif
    return seqs;
  }();
  return keys;
}

class TerminalKeys final : public KeySource {
 public:
  explicit TerminalKeys(int fd) : fd_(fd) {
    RegisterTerminalInput(fd);
    termios t;
    if (tcgetattr(fd, &t) == 0) erase_ = t.c_cc[VERASE];
    seqs_ = TerminfoKeys(fd);
    static const KeySeq kFallbacks[] = {
        {"\x1bOP", key::kF1},    {"\x1bOQ", key::kF2},   {"\x1bOR", key::kF3},
        {"\x1bOS", key::kF4},    {"\x1b[11~", key::kF1}, {"\x1b[12~", key::kF2},
        {"\x1b[13~", key::kF3},  {"\x1b[14~", key::kF4}, {"\x1b[15~", key::kF5},
        {"\x1b[[A", key::kF1},   {"\x1b[[B", key::kF2},  {"\x1b[[C", key::kF3},
        {"\x1b[[D", key::kF4},   {"\x1b[[E", key::kF5},  {"\x1b[D", key::kLeft},
        {"\x1b[C", key::kRight}, {"\x1bOD", key::kLeft}, {"\x1bOC", key::kRight},
        {"\x1b[2~", key::kIns},  {"\x1b[3~", key::kDel}, {"\x1b[A", key::kUp},
        {"\x1b[B", key::kDown},  {"\x1bOA", key::kUp},   {"\x1bOB", key::kDown},
    };
    for (const KeySeq& k : kFallbacks) seqs_.push_back(k);
  }

  void BeginLine() override { SetRawInput(true); }
  void EndLine() override { SetRawInput(false); }

  int WaitKey(int timeoutMs) override {
    if (!g_typedAhead.empty()) {
      buf_ += g_typedAhead;  // read after what buf_ holds
      g_typedAhead.clear();
    }
    if (buf_.empty()) {
      int r = Fill(timeoutMs);
      if (r <= 0) return r == 0 ? kEnd : kNone;
    }
    unsigned char b = static_cast<unsigned char>(buf_[0]);
    if (b != 0x1b) {
      buf_.erase(0, 1);
      if (b == '\r' || b == '\n') return key::kEnter;
      if (b == erase_ || b == 8) return key::kBackspace;
      return b;
    }
    return DecodeEscape();
  }

 private:
  // Reads what is there within timeoutMs: bytes added, 0 at end of input, -1 for none.
  int Fill(int timeoutMs) {
    pollfd pfd{fd_, POLLIN, 0};
    if (poll(&pfd, 1, timeoutMs) <= 0) return -1;
    char tmp[256];
    ssize_t r = read(fd_, tmp, sizeof tmp);
    if (r < 0) return errno == EINTR || errno == EAGAIN ? -1 : 0;
    if (r == 0) return 0;
    buf_.append(tmp, static_cast<size_t>(r));
    return static_cast<int>(r);
  }

  // Known sequence: its code; lone ESC: Escape; anything else after ESC: an ignored key.
  int DecodeEscape() {
    for (;;) {
      bool prefix = false;
      for (const KeySeq& k : seqs_) {
        if (buf_.compare(0, k.bytes.size(), k.bytes) == 0) {
          buf_.erase(0, k.bytes.size());
          return k.code;
        }
        if (k.bytes.compare(0, buf_.size(), buf_) == 0) prefix = true;
      }
      if (buf_.size() == 1) prefix = true;
      if (!prefix || Fill(kEscWaitMs) <= 0) break;
    }
    if (buf_.size() == 1) {
      buf_.clear();
      return key::kEscape;
    }
    // An unknown sequence: skip ESC [ or ESC O with its parameters and final byte.
    size_t i = 1;
    if (buf_[1] == '[' || buf_[1] == 'O') {
      i = 2;
      while (i < buf_.size() &&
             !(buf_[i] >= 0x40 && buf_[i] <= 0x7e && !(i == 2 && buf_[i] == '[')))
        ++i;
      if (i < buf_.size()) ++i;
    } else {
      i = 2;  // Alt with a key
    }
    buf_.erase(0, i);
    return key::kPrefixed;
  }

  int fd_;
  unsigned char erase_ = 127;
  std::vector<KeySeq> seqs_;
  std::string buf_;
};

}  // namespace

std::unique_ptr<KeySource> MakeTerminalKeys(int fd) { return std::make_unique<TerminalKeys>(fd); }

void KeepTypedAhead(std::string_view bytes) { g_typedAhead += bytes; }
