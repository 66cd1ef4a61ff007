// Graphics windows in a web page: the page is the window system and plays the
// window thread's part. Each request becomes a message to it, and it answers on
// the window record's own flags as the thread would: it sets open and clears
// creating, copies the picture and counts painting down, clears update pending.
#include <emscripten/em_js.h>
#include <emscripten/emscripten.h>

#include "gdi/window.h"
#include "gdi/window_thread.h"

namespace {

EM_JS(void, HostWindow,
      (const char* request, int number, uint32_t width, uint32_t height, const uint32_t* pixels,
       void* creating, void* painting, void* updatePending, void* open),
      {
        veloHost.window(UTF8ToString(request), number, width, height, pixels, creating, painting,
                        updatePending, open);
      });

}  // namespace

std::unique_ptr<WindowThread> WindowThread::Start(std::string*) {
  return std::unique_ptr<WindowThread>(new WindowThread());
}

WindowThread::~WindowThread() = default;

bool WindowThread::Post(Request request, WindowRecord* r) {
  static const char* const kNames[] = {"create", "close", "paint", "marker",
                                       "show",   "hide",  "quit"};
  if (!r) return true;  // the page has no thread to end
  HostWindow(kNames[request], r->number, r->width, r->height, r->bitmap->Pixels(), &r->creating,
             &r->painting, &r->updatePending, &r->open);
  return true;
}
