// The one thread that owns every graphics window through SDL2. The main
// thread never calls SDL's video functions: it posts requests as SDL user
// events and waits on the flags of the window records.
#pragma once
#include <atomic>
#include <memory>
#include <string>
#include <thread>

struct WindowRecord;

class WindowThread final {
 public:
  enum Request {
    kCreate,  // open the record's window, then set open and clear creating
    kClose,   // destroy it if it still exists, then clear creating
    kPaint,   // copy the bitmap to the screen, then count painting down
    kMarker,  // clears update pending once everything before it is done
    kShow,
    kHide,
    kQuit,  // the thread ends
  };

  // Starts the thread and waits until its video system is up. Null when no
  // display can be opened or SDL2 is absent; *why then says what failed.
  static std::unique_ptr<WindowThread> Start(std::string* why);
  // Stops the thread and waits for it; every window must be closed before.
  ~WindowThread();

  // Queues a request; false when the queue refused it.
  bool Post(Request request, WindowRecord* record);

 private:
  WindowThread() = default;
#ifndef __EMSCRIPTEN__  // in a web page the page is the window thread
  void Main();
  void AwaitWake();

  std::thread thread_;
  // 0 while starting, then kUp or kFailed; written once by the thread.
  std::atomic<int> state_{0};
  static constexpr int kUp = 1, kFailed = 2;
  uint32_t eventType_ = 0;  // SDL's number for our requests, set before kUp
  std::string why_;         // set before kFailed
  int wake_[2] = {-1, -1};  // a pipe: Post writes a byte, the idle thread polls for it
#endif
};
