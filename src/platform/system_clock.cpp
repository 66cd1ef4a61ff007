#include "platform/system_clock.h"

#include <unistd.h>

namespace {

// Taken when the interpreter starts, not when TIM is first asked.
const SystemClock::TimePoint g_started = std::chrono::system_clock::now();

class ProcessClock final : public SystemClock {
 public:
  TimePoint Now() const override { return std::chrono::system_clock::now(); }
  TimePoint Started() const override { return g_started; }
  uint32_t ProcessId() const override { return static_cast<uint32_t>(getpid()); }
};

std::unique_ptr<SystemClock> g_clock;

}  // namespace

const SystemClock& TheClock() {
  if (!g_clock) g_clock = std::make_unique<ProcessClock>();
  return *g_clock;
}

std::unique_ptr<SystemClock> InstallClock(std::unique_ptr<SystemClock> clock) {
  g_clock.swap(clock);
  return clock;
}
