#include "gdi/window_thread.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include "gdi/window.h"
#include "platform/async_flag.h"

#if HAVE_SDL2
#include <SDL2/SDL.h>

namespace {

constexpr const char* kTitle = "Velo Basic Test Window";
constexpr const char* kRecordKey = "record";
// Larger windows show the top left of their picture (X11 sizes are 16-bit).
constexpr uint32_t kMaxWindowSide = 16384;

// SDL2 is opened with the first window, not linked: its fifty-odd libraries
// cost every run, graphics or not, milliseconds in the dynamic loader. Names
// are the exported ones (SDL_BlitSurface is a macro for SDL_UpperBlit).
// clang-format off
#define SDL_CALLS(X)                                                                    \
  X(CreateRGBSurfaceWithFormatFrom) X(CreateWindow) X(DestroyWindow)    \
  X(FillRect) X(FreeSurface) X(GetCurrentVideoDriver) X(GetError) X(GetWindowData)    \
  X(GetWindowFromID) X(GetWindowSurface) X(HideWindow) X(Init) X(MapRGB)              \
  X(PollEvent) X(PushEvent) X(Quit) X(RegisterEvents) X(SetHint) X(SetWindowData)     \
  X(SetWindowMaximumSize) X(ShowWindow) X(UpdateWindowSurface) X(UpperBlit)
// clang-format on

struct SdlCalls {
#define SDL_POINTER(name) decltype(&::SDL_##name) name = nullptr;
  SDL_CALLS(SDL_POINTER)
#undef SDL_POINTER
};
SdlCalls sdl;  // filled once by LoadSdl, before the window thread starts

// Opens the library and finds every call; it stays open for the process's life.
bool LoadSdl(std::string* why) {
  void* lib = dlopen("libSDL2-2.0.so.0", RTLD_NOW | RTLD_LOCAL);
  if (!lib) {
    *why = "SDL2 could not be loaded";
    return false;
  }
#define SDL_FIND(name)                                                       \
  sdl.name = reinterpret_cast<decltype(sdl.name)>(dlsym(lib, "SDL_" #name)); \
  if (!sdl.name) {                                                           \
    *why = "SDL2 lacks SDL_" #name;                                          \
    return false;                                                            \
  }
  SDL_CALLS(SDL_FIND)
#undef SDL_FIND
  return true;
}

SDL_Window* WindowOf(const WindowRecord* r) { return static_cast<SDL_Window*>(r->window); }
SDL_Surface* SurfaceOf(const WindowRecord* r) { return static_cast<SDL_Surface*>(r->surface); }

// Copies the bitmap to the window; the caller has counted painting up. Waits
// out a LineTo under way, so the copy never sees half a line.
void Paint(WindowRecord* r) {
  while (r->drawing.load()) std::this_thread::yield();
  SDL_Window* window = WindowOf(r);
  SDL_Surface* screen = window ? sdl.GetWindowSurface(window) : nullptr;
  if (screen) {
    if (screen->w > SurfaceOf(r)->w || screen->h > SurfaceOf(r)->h)
      sdl.FillRect(screen, nullptr, sdl.MapRGB(screen->format, 255, 255, 255));
    sdl.UpperBlit(SurfaceOf(r), nullptr, screen, nullptr);
    sdl.UpdateWindowSurface(window);
  }
  r->painting.fetch_sub(1);
}

void Create(WindowRecord* r) {
  const Bitmap& b = *r->bitmap;
  int w = static_cast<int>(std::min(r->width, kMaxWindowSide));
  int h = static_cast<int>(std::min(r->height, kMaxWindowSide));
  SDL_Window* window = sdl.CreateWindow(kTitle, SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, w,
                                        h, SDL_WINDOW_SHOWN | SDL_WINDOW_RESIZABLE);
  SDL_Surface* surface = window ? sdl.CreateRGBSurfaceWithFormatFrom(
                                      const_cast<uint32_t*>(b.Pixels()),
                                      static_cast<int>(b.Width()), static_cast<int>(b.Height()), 32,
                                      static_cast<int>(b.Width() * 4), SDL_PIXELFORMAT_RGB888)
                                : nullptr;
  if (window && !surface) {
    sdl.DestroyWindow(window);
    window = nullptr;
  }
  if (window) {
    sdl.SetWindowMaximumSize(window, w, h);
    sdl.SetWindowData(window, kRecordKey, r);
  }
  // A window the system refuses stays open without a screen: it still draws.
  r->window = window;
  r->surface = surface;
  r->open.store(1);
  r->creating.store(0);
}

void Destroy(WindowRecord* r) {
  if (SDL_Window* window = WindowOf(r)) sdl.DestroyWindow(window);
  if (SDL_Surface* surface = SurfaceOf(r)) sdl.FreeSurface(surface);
  r->window = nullptr;
  r->surface = nullptr;
}

// Xlib's own handler ends the process on any X error, such as a request about
// a window that is already gone; the interpreter's program must survive it.
void IgnoreXErrors() {
  void* x11 = dlopen("libX11.so.6", RTLD_LAZY | RTLD_NOLOAD);
  if (!x11) return;
  using Handler = int (*)(void*, void*);
  if (auto set = reinterpret_cast<Handler (*)(Handler)>(dlsym(x11, "XSetErrorHandler")))
    set([](void*, void*) { return 0; });
  dlclose(x11);
}

bool Named(const char* variable) {
  const char* value = std::getenv(variable);
  return value && *value;
}

WindowRecord* RecordOf(uint32_t windowId) {
  SDL_Window* window = sdl.GetWindowFromID(windowId);
  return window ? static_cast<WindowRecord*>(sdl.GetWindowData(window, kRecordKey)) : nullptr;
}

void OnWindowEvent(const SDL_WindowEvent& e) {
  WindowRecord* r = RecordOf(e.windowID);
  if (!r) return;
  switch (e.event) {
    case SDL_WINDOWEVENT_EXPOSED:
    case SDL_WINDOWEVENT_SIZE_CHANGED:
      r->painting.fetch_add(1);
      Paint(r);
      break;
    case SDL_WINDOWEVENT_CLOSE:  // the user closed it: the next statement frees the slot
      Destroy(r);
      r->open.store(0);
      break;
  }
}

// Does what an event asks; false for the request to end the thread.
bool Handle(const SDL_Event& e, uint32_t requestType) {
  if (e.type == requestType) {
    auto* r = static_cast<WindowRecord*>(e.user.data1);
    switch (e.user.code) {
      case WindowThread::kCreate:
        Create(r);
        break;
      case WindowThread::kClose:
        Destroy(r);
        r->creating.store(0);
        break;
      case WindowThread::kPaint:
        Paint(r);
        break;
      case WindowThread::kMarker:
        r->updatePending.store(0);
        break;
      case WindowThread::kShow:
        if (r->window) sdl.ShowWindow(WindowOf(r));
        break;
      case WindowThread::kHide:
        if (r->window) sdl.HideWindow(WindowOf(r));
        break;
      case WindowThread::kQuit:
        return false;
    }
  } else if (e.type == SDL_WINDOWEVENT) {
    OnWindowEvent(e.window);
  } else if (e.type == SDL_KEYDOWN && e.key.keysym.sym == SDLK_c &&
             (e.key.keysym.mod & KMOD_CTRL)) {
    // Ctrl+C in a graphics window breaks as in the console.
    g_breakFlag.fetch_or(async::kBreak, std::memory_order_relaxed);
  }
  return true;
}

}  // namespace

std::unique_ptr<WindowThread> WindowThread::Start(std::string* why) {
  // Without a display to name, SDL would probe the console and fall back to
  // drivers that show nothing; a driver named in SDL_VIDEODRIVER is tried.
  if (!Named("SDL_VIDEODRIVER") && !Named("DISPLAY") && !Named("WAYLAND_DISPLAY")) {
    *why = "DISPLAY is not set";
    return nullptr;
  }
  static std::string loadWhy;
  static const bool loaded = LoadSdl(&loadWhy);
  if (!loaded) {
    *why = loadWhy;
    return nullptr;
  }
  std::unique_ptr<WindowThread> t(new WindowThread());
  if (pipe2(t->wake_, O_NONBLOCK | O_CLOEXEC) != 0) {
    *why = "no pipe for the window thread";
    return nullptr;
  }
  t->thread_ = std::thread(&WindowThread::Main, t.get());
  int state;
  while ((state = t->state_.load()) == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  if (state == kUp) return t;
  t->thread_.join();
  *why = t->why_;
  return nullptr;
}

WindowThread::~WindowThread() {
  if (thread_.joinable()) {
    while (!Post(kQuit, nullptr)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    thread_.join();
  }
  for (int fd : wake_)
    if (fd >= 0) close(fd);
}

bool WindowThread::Post(Request request, WindowRecord* record) {
  SDL_Event e = {};
  e.type = eventType_;
  e.user.code = request;
  e.user.data1 = record;
  if (sdl.PushEvent(&e) != 1) return false;
  // A full pipe already holds a wake-up.
  [[maybe_unused]] ssize_t n = write(wake_[1], "", 1);
  return true;
}

// Sleeps until a request is posted, or 10 ms for the window system's events.
// SDL_WaitEvent is not used: its own wake-up sends an X request from the
// posting thread to a window that this thread may be destroying meanwhile.
void WindowThread::AwaitWake() {
  pollfd p = {wake_[0], POLLIN, 0};
  if (poll(&p, 1, 10) <= 0) return;
  char drain[64];
  while (read(wake_[0], drain, sizeof drain) > 0) {
  }
}

void WindowThread::Main() {
  // Ctrl+C stays the interpreter's break key, not a quit request of SDL's.
  sdl.SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  sdl.SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
  // Copies go straight to the window system; no OpenGL renderer and its threads.
  sdl.SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  if (sdl.Init(SDL_INIT_VIDEO) != 0) {
    why_ = sdl.GetError();
    state_.store(kFailed);
    return;
  }
  const char* driver = sdl.GetCurrentVideoDriver();
  if (!Named("SDL_VIDEODRIVER") && driver &&
      (std::strcmp(driver, "offscreen") == 0 || std::strcmp(driver, "dummy") == 0)) {
    sdl.Quit();
    why_ = "no display could be opened";
    state_.store(kFailed);
    return;
  }
  if (driver && std::strcmp(driver, "x11") == 0) IgnoreXErrors();
  eventType_ = sdl.RegisterEvents(1);
  state_.store(kUp);
  SDL_Event e;
  for (bool running = true; running;) {
    while (running && sdl.PollEvent(&e)) running = Handle(e, eventType_);
    if (running) AwaitWake();
  }
  sdl.Quit();
}

#else  // built without SDL2: every window is headless

std::unique_ptr<WindowThread> WindowThread::Start(std::string* why) {
  *why = "built without SDL2";
  return nullptr;
}
WindowThread::~WindowThread() = default;
bool WindowThread::Post(Request, WindowRecord*) { return false; }
void WindowThread::Main() {}
void WindowThread::AwaitWake() {}

#endif
