#include "gdi/gdi.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include "gdi/window.h"
#include "gdi/window_thread.h"

namespace gdi {
namespace {

// Polls while busy() holds: the window thread answers within moments, so the
// first rounds only yield, then 1 ms sleeps.
template <class Busy>
void WaitWhile(Busy busy) {
  for (int round = 0; busy(); ++round) {
    if (round < 64)
      std::this_thread::yield();
    else
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

// The thread's queue refuses only while it is full, and it drains.
void PostWhenRoom(WindowThread& thread, WindowThread::Request request, WindowRecord* r) {
  WaitWhile([&] { return !thread.Post(request, r); });
}

struct Table {
  std::unique_ptr<WindowRecord> slots[kLast + 1];
  std::unique_ptr<WindowThread> thread;  // runs while there is a display
  bool headless = false;                 // no display: windows draw off-screen only
  bool noticed = false;                  // the headless notice has been given

  ~Table() { Shutdown(); }
  void Post(WindowThread::Request request, WindowRecord* r) { PostWhenRoom(*thread, request, r); }

  // Every record goes back through the window thread, which is then done
  // with it: requests about it that are still queued come first.
  void FreeSlot(int32_t n) {
    WindowRecord* r = slots[n].get();
    if (thread) {
      r->creating.store(1);
      Post(WindowThread::kClose, r);
      WaitWhile([&] { return r->creating.load() != 0; });
    }
    slots[n].reset();
  }
  void CloseAll() {
    for (int32_t n = kFirst; n <= kLast; ++n)
      if (slots[n]) FreeSlot(n);
  }
  void Shutdown() {
    CloseAll();
    thread.reset();
  }
};

Table& T() {
  static Table table;
  return table;
}

bool Open(const WindowRecord* r) { return r->open.load() != 0; }

// Waits while creating or an UPDATE's marker is queued, then queues a marker.
void MarkerHandshake(WindowRecord* r) {
  WaitWhile([&] { return (r->creating.load() || r->updatePending.load()) && Open(r); });
  r->updatePending.store(1);
  T().Post(WindowThread::kMarker, r);
}

void WaitForPaint(WindowRecord* r) {
  WaitWhile([&] { return r->painting.load() && Open(r); });
}

// Draws only while no copy to the screen runs. Drawing and painting are raised
// before each looks at the other, so the two never overlap.
template <class Draw>
void Drawing(WindowRecord* r, Draw draw) {
  for (;;) {
    r->drawing.store(1);
    if (!r->painting.load() || !Open(r)) break;
    r->drawing.store(0);
    WaitForPaint(r);
  }
  draw();
  r->drawing.store(0);
}

// The open record of slot n, or null with *code set. A window that the user
// closed is freed first.
WindowRecord* Lookup(int32_t n, ErrorCode* code) {
  if (n < kFirst || n > kLast) {
    *code = err::kBadGdiNumber;
    return nullptr;
  }
  WindowRecord* r = T().slots[n].get();
  if (r && !Open(r)) {
    T().FreeSlot(n);
    r = nullptr;
  }
  if (!r) *code = err::kGdiNotOpen;
  return r;
}

void StartThread() {
  Table& t = T();
  if (t.thread || t.headless) return;
  std::string why;
  t.thread = WindowThread::Start(&why);
  if (t.thread) return;
  t.headless = true;
  if (!t.noticed)
    std::fprintf(stderr, "basic: graphics windows are drawn off-screen only (%s)\n", why.c_str());
  t.noticed = true;
}

void DumpPicture(const WindowRecord* r) {
  const char* folder = std::getenv("BASIC_GDI_DUMP");
  if (!folder || !*folder) return;
  std::string path = std::string(folder) + "/gdi" + std::to_string(r->number) + ".ppm";
  r->bitmap->WritePpm(path.c_str());  // a picture that cannot be written is skipped
}

bool InByte(int32_t v) { return v >= 0 && v <= 255; }

ErrorCode ShowOrHide(int32_t n, WindowThread::Request request) {
  ErrorCode code = 0;
  WindowRecord* r = Lookup(n, &code);
  if (!r) return code;
  if (!T().thread) return 0;
  MarkerHandshake(r);
  WaitForPaint(r);
  T().Post(request, r);
  return 0;
}

}  // namespace

ErrorCode Window(int32_t n, int32_t width, int32_t height) {
  if (n < kFirst || n > kLast) return err::kBadGdiNumber;
  Table& t = T();
  if (t.slots[n]) return err::kGdiInUse;
  if (width < 1 || height < 1) return err::kArgOutOfRange;
  auto w = static_cast<uint32_t>(width), h = static_cast<uint32_t>(height);
  std::unique_ptr<Bitmap> picture = Bitmap::Create(w, h);
  if (!picture) return err::kNoMemory;
  auto r = std::make_unique<WindowRecord>(n, w, h, std::move(picture));
  StartThread();
  if (t.thread) {
    r->creating.store(1);
    t.Post(WindowThread::kCreate, r.get());
    WaitWhile([&] { return r->creating.load() != 0; });
  } else {
    r->open.store(1);
  }
  t.slots[n] = std::move(r);
  return 0;
}

ErrorCode Close(int32_t n) {
  ErrorCode code = 0;
  if (!Lookup(n, &code)) return code;
  T().FreeSlot(n);
  return 0;
}

ErrorCode Color(int32_t n, int32_t red, int32_t green, int32_t blue) {
  ErrorCode code = 0;
  WindowRecord* r = Lookup(n, &code);
  if (!r) return code;
  if (!InByte(red) || !InByte(green) || !InByte(blue)) return err::kArgOutOfRange;
  // The pen and the position are the main thread's alone: no copy reads them.
  r->bitmap->SetPen(static_cast<uint8_t>(red), static_cast<uint8_t>(green),
                    static_cast<uint8_t>(blue));
  return 0;
}

ErrorCode MoveTo(int32_t n, int32_t x, int32_t y) {
  ErrorCode code = 0;
  WindowRecord* r = Lookup(n, &code);
  if (!r) return code;
  r->bitmap->MoveTo(x, y);
  return 0;
}

ErrorCode LineTo(int32_t n, int32_t x, int32_t y) {
  ErrorCode code = 0;
  WindowRecord* r = Lookup(n, &code);
  if (!r) return code;
  Drawing(r, [&] { r->bitmap->LineTo(x, y); });
  return 0;
}

ErrorCode Update(int32_t n) {
  ErrorCode code = 0;
  WindowRecord* r = Lookup(n, &code);
  if (!r) return code;
  DumpPicture(r);
  if (!T().thread) return 0;
  MarkerHandshake(r);
  WaitForPaint(r);
  r->painting.fetch_add(1);  // drawing waits until the copy is on the screen
  T().Post(WindowThread::kPaint, r);
  return 0;
}

ErrorCode Show(int32_t n) { return ShowOrHide(n, WindowThread::kShow); }
ErrorCode Hide(int32_t n) { return ShowOrHide(n, WindowThread::kHide); }

void CloseAll() { T().CloseAll(); }
void Shutdown() { T().Shutdown(); }

const Bitmap* PictureOf(int32_t n) {
  if (n < kFirst || n > kLast || !T().slots[n]) return nullptr;
  return T().slots[n]->bitmap.get();
}

void SetHeadless(bool on) {
  Shutdown();
  T().headless = on;
}

bool ThreadRunning() { return T().thread != nullptr; }

void SimulateUserClose(int32_t n) {
  if (WindowRecord* r = T().slots[n].get()) r->open.store(0);
}

}  // namespace gdi
