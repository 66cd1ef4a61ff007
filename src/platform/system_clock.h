// What TIM and TID read: the calendar clock, the interpreter's start and the
// process id. Tests install a clock of their own to get fixed answers.
#pragma once
#include <chrono>
#include <cstdint>
#include <memory>

class SystemClock {
 public:
  using TimePoint = std::chrono::system_clock::time_point;

  virtual ~SystemClock() = default;
  virtual TimePoint Now() const = 0;
  virtual TimePoint Started() const = 0;  // TIM(11) counts from here
  virtual uint32_t ProcessId() const = 0;
};

// The installed clock; the process's own until another is installed.
const SystemClock& TheClock();
// Installs a clock (tests); returns the old one. Null puts the process's clock back.
std::unique_ptr<SystemClock> InstallClock(std::unique_ptr<SystemClock> clock);
