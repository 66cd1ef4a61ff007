#include "platform/web_host.h"

#include <emscripten/em_js.h>
#include <emscripten/emscripten.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/async_flag.h"
#include "platform/host_notice.h"

namespace {

web::Shared g_shared;

// The worker's half of each message is veloHost in web/worker.js.
EM_JS(void, HostOutput, (const char* bytes, size_t n), { veloHost.output(bytes, n); });
EM_JS(void, HostState, (const char* what, int on), { veloHost.state(UTF8ToString(what), on); });
EM_JS(void, HostFlushTimer, (int ms), { veloHost.flushTimer(ms); });
EM_JS(void, HostSyncFiles, (), { veloHost.syncFiles(); });
EM_JS(void, HostReceived, (const char* name, int ok),
      { veloHost.received(UTF8ToString(name), ok); });

// A name the page may give a file: one plain name in the working folder.
bool PlainName(const std::string& name) {
  return !name.empty() && name[0] != '.' && name.find('/') == std::string::npos;
}

}  // namespace

// Where the page finds the shared block and the async flag; worker.js asks once.
extern "C" EMSCRIPTEN_KEEPALIVE void* web_shared() { return &g_shared; }
extern "C" EMSCRIPTEN_KEEPALIVE void* web_async_flag() { return &g_breakFlag; }

void NoteRunning(bool running) { HostState("running", running); }

namespace web {

Shared& TheShared() { return g_shared; }

void WaitForPage(int32_t seen, int64_t ms) {
#ifdef BASIC_WEB_ASYNCIFY
  if (g_shared.wake.load() == seen) emscripten_sleep(ms < 0 || ms > 50 ? 50 : ms);
#else
  int64_t ns = ms < 0 ? -1 : ms * 1000000;
  // std::atomic<int32_t> holds just the integer, which the page reaches with Atomics.
  __builtin_wasm_memory_atomic_wait32(reinterpret_cast<int32_t*>(&g_shared.wake), seen, ns);
#endif
}

void PostOutput(const char* bytes, size_t n) { HostOutput(bytes, n); }
void PostReading(bool reading) { HostState("reading", reading); }
void PostFlushTimer(int ms) { HostFlushTimer(ms); }
void SyncFiles() { HostSyncFiles(); }

void TakeInbox() {
  if (g_shared.inboxState.load() != 1) return;
  // A file arrives in chunks, into NAME.part, renamed to NAME once whole.
  static std::FILE* file = nullptr;
  static std::string name;
  int32_t flags = g_shared.inboxFlags;
  if (flags & kInboxFirst) {
    if (file) std::fclose(file);  // one the page gave up on
    g_shared.inboxName[sizeof g_shared.inboxName - 1] = '\0';
    name = g_shared.inboxName;
    file = PlainName(name) ? std::fopen((name + ".part").c_str(), "wb") : nullptr;
  }
  auto n = static_cast<size_t>(std::clamp(g_shared.inboxLength, 0, kInboxBytes));
  if (file && std::fwrite(g_shared.inbox, 1, n, file) != n) {
    std::fclose(file);
    file = nullptr;
    std::remove((name + ".part").c_str());
    HostReceived(name.c_str(), 0);
  }
  if ((flags & kInboxLast) && file) {
    bool ok = std::fclose(file) == 0 && std::rename((name + ".part").c_str(), name.c_str()) == 0;
    file = nullptr;
    if (!ok) std::remove((name + ".part").c_str());
    HostReceived(name.c_str(), ok);
    HostSyncFiles();  // the page lists it, and keeps it
  } else if ((flags & kInboxFirst) && !file) {
    HostReceived(name.c_str(), 0);
  }
  g_shared.inboxState.store(0);
}

}  // namespace web
