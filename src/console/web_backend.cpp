// The console in a web page: ECMA-48 output to the page's terminal widget, and the
// keys the page decoded, read from the ring it writes into shared memory.
#include "console/web_backend.h"

#include "console/ecma48_screen.h"
#include "console/key_source.h"
#include "platform/signals.h"
#include "platform/web_host.h"

namespace {

// Output the terminal widget has not yet taken: beyond it, the interpreter waits
// for the page, as a write to a slow terminal would.
constexpr uint32_t kBacklogBytes = 1 << 20;

class WebBackend final : public Ecma48Screen<WebBackend> {
 public:
  WebBackend() {
    web::Shared& s = web::TheShared();
    resizeSeen_ = s.resizes.load();
    ReadSize();
  }
  ~WebBackend() override { Drain(); }

  bool Resized(int* cols, int* rows) override {
    int32_t seen = web::TheShared().resizes.load();
    if (seen == resizeSeen_) return false;
    resizeSeen_ = seen;
    tcx_ = tcy_ = -1;
    ReadSize();
    *cols = cols_;
    *rows = rows_;
    return true;
  }

 private:
  friend class Ecma48Screen<WebBackend>;

  void ReadSize() {
    web::Shared& s = web::TheShared();
    cols_ = s.cols.load() > 0 ? s.cols.load() : 80;
    rows_ = s.rows.load() > 0 ? s.rows.load() : 24;
  }

  void Sync() {}
  void Changed(bool) {}  // the page's terminal goes when the page goes
  void Pending() { NoteOutputPending(); }

  void Drain() {
    if (n_ == 0) return;
    web::Shared& s = web::TheShared();
    web::PostOutput(buf_, n_);
    // Running counts that wrap: their difference is the backlog.
    auto sent = static_cast<uint32_t>(s.outSent.fetch_add(static_cast<int32_t>(n_))) + n_;
    n_ = 0;
    for (;;) {
      int32_t seen = s.wake.load();
      if (sent - static_cast<uint32_t>(s.outShown.load()) <= kBacklogBytes) break;
      web::WaitForPage(seen, 100);
    }
  }

  int32_t resizeSeen_ = 0;
};

class WebKeys final : public KeySource {
 public:
  void BeginLine() override {
    web::SyncFiles();  // what the last command or run wrote is kept before the next one
    web::PostReading(true);
  }
  void EndLine() override { web::PostReading(false); }

  int WaitKey(int timeoutMs) override {
    web::Shared& s = web::TheShared();
    int32_t seen = s.wake.load();
    web::TakeInbox();
    if (int key = Take(); key != kNone) return key;
    web::WaitForPage(seen, timeoutMs);
    return Take();
  }

 private:
  int Take() {
    web::Shared& s = web::TheShared();
    int32_t tail = s.keyTail.load();
    if (tail == s.keyHead.load()) return kNone;
    int key = s.keys[tail & (web::kKeyRing - 1)];
    s.keyTail.store(tail + 1);
    // Codes past the key codes the editor knows are taken as an unknown prefixed key.
    return key >= 0 && key < 512 ? key : 256;
  }
};

}  // namespace

std::unique_ptr<ConsoleBackend> MakeWebBackend() { return std::make_unique<WebBackend>(); }
std::unique_ptr<KeySource> MakeWebKeys() { return std::make_unique<WebKeys>(); }
