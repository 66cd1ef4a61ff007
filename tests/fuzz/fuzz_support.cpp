// The process-wide parts of every fuzz target: a memory cap that turns large
// allocations into std::bad_alloc, as a machine short of memory would, and the
// scratch folder.
#include "fuzz_support.h"

#include <malloc.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>

#include "base/dialect.h"
#include "base/errors.h"
#include "gdi/gdi.h"
#include "platform/break_flag.h"

namespace {

// Live bytes from operator new; beyond the cap a new fails as it would on a full machine.
constexpr size_t kMemoryCap = size_t{384} << 20;
size_t g_live = 0;

void* Allocate(size_t size) {
  if (size > kMemoryCap || g_live + size > kMemoryCap) return nullptr;
  void* p = std::malloc(size ? size : 1);
  if (p) g_live += malloc_usable_size(p);
  return p;
}

void Release(void* p) {
  if (!p) return;
  g_live -= malloc_usable_size(p);
  std::free(p);
}

std::string g_scratch;

void RemoveScratch() {
  std::error_code ignored;
  std::filesystem::remove_all(g_scratch, ignored);
}

}  // namespace

void* operator new(size_t size) {
  if (void* p = Allocate(size)) return p;
  throw std::bad_alloc();
}
void* operator new[](size_t size) { return operator new(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* p) noexcept { Release(p); }
void operator delete[](void* p) noexcept { Release(p); }
void operator delete(void* p, size_t) noexcept { Release(p); }
void operator delete[](void* p, size_t) noexcept { Release(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { Release(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { Release(p); }

namespace fuzz {

void EnterScratchFolder() {
  if (!g_scratch.empty()) return;
  char folder[] = "/tmp/basic-fuzz-XXXXXX";
  if (!mkdtemp(folder) || chdir(folder) != 0) std::abort();
  g_scratch = folder;
  std::atexit(RemoveScratch);
}

void ResetState() {
  g_classic = false;  // a CLASSIC ON typed by one input must not carry into the next
  SetParseError(0);
  ClearError();
  SetErrorFile(nullptr);
  g_breakFlag.store(0);
  g_fuzzBudget = 0;
  gdi::SetHeadless(true);  // closes the windows a run left; nothing opens on a display
}

}  // namespace fuzz
