// In a web page the interpreter runs in a worker, and the page stands where the
// operating system stands on a desktop: it is the terminal, the window system
// and the source of async events. The page writes keys, the screen size, files
// sent to the interpreter and the async flag's events into shared memory and
// wakes the worker; the worker posts its output and its requests as messages.
// web/main.js reads this layout: keep the two in step.
#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace web {

constexpr int32_t kKeyRing = 1024;        // keys the page may write ahead; a power of two
constexpr int32_t kInboxBytes = 1 << 16;  // one chunk of a file the page sends
constexpr int32_t kInboxFirst = 1, kInboxLast = 2;

struct Shared {
  std::atomic<int32_t> wake;     // the page adds 1 and notifies after each change
  std::atomic<int32_t> keyHead;  // keys written by the page, a running count
  std::atomic<int32_t> keyTail;  // keys taken by the worker
  std::atomic<int32_t> cols;
  std::atomic<int32_t> rows;
  std::atomic<int32_t> resizes;   // bumped by the page when cols and rows change
  std::atomic<int32_t> outSent;   // output bytes posted, a running count
  std::atomic<int32_t> outShown;  // output bytes the terminal has taken
  // 1 while a chunk of a file waits here; the worker sets it back to 0.
  std::atomic<int32_t> inboxState;
  int32_t inboxLength;
  int32_t inboxFlags;  // kInboxFirst, kInboxLast
  char inboxName[256];
  int32_t keys[kKeyRing];
  uint8_t inbox[kInboxBytes];
};

static_assert(offsetof(Shared, inboxState) == 32 && offsetof(Shared, inboxName) == 44 &&
                  offsetof(Shared, keys) == 300 && offsetof(Shared, inbox) == 300 + 4 * kKeyRing,
              "web/main.js reads these offsets");

Shared& TheShared();

// Sleeps until the page changes the wake word from seen, or ms pass (ms < 0: no limit).
void WaitForPage(int32_t seen, int64_t ms);

// Messages to the page.
void PostOutput(const char* bytes, size_t n);
void PostReading(bool reading);
void PostFlushTimer(int ms);  // the page sets async::kFlushDue after ms
// Mirrors the changes of the user's folder into the page's storage.
void SyncFiles();
// Writes a chunk of a file the page sent, if one waits.
void TakeInbox();

}  // namespace web
