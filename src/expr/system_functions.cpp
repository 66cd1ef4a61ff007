// Functions that read the system: TIM, VER, TID, BRK, SYS; TYP, REC and ITM are
// made by the data files (files/file_functions.cpp) through the context.
#include <chrono>
#include <ctime>

#include "base/convert.h"
#include "expr/expr_context.h"
#include "expr/function_nodes.h"
#include "platform/system_clock.h"

namespace {

using Clock = std::chrono::system_clock;

// Calendar seconds and their milliseconds.
struct WallTime {
  int64_t seconds;
  int64_t millis;
};

WallTime Split(Clock::time_point t) {
  auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(t.time_since_epoch()).count();
  int64_t seconds = ms / 1000, millis = ms % 1000;
  if (millis < 0) {
    millis += 1000;
    --seconds;
  }
  return {seconds, millis};
}

// x rounded, or -1 when it is no small non-negative whole number.
int Selector(float x) {
  int64_t n;
  return conv::ToIntIn(conv::RoundHalfUp(x), 0, 1000, &n) ? static_cast<int>(n) : -1;
}

class TimFunc final : public NumericArgFunc {
 public:
  TimFunc(const KeyToken* key, NumericExpPtr arg) : NumericArgFunc(key, std::move(arg)) {}
  float Evaluate() override {
    int n = Selector(arg_->Evaluate());
    const SystemClock& clock = TheClock();
    WallTime now = Split(clock.Now());
    auto seconds = static_cast<time_t>(now.seconds);
    std::tm local{};
    localtime_r(&seconds, &local);
    int64_t value;
    switch (n) {
      case 0:
        value = local.tm_min;
        break;
      case 1:
        value = local.tm_hour;
        break;
      case 2:
        value = local.tm_yday + 1;
        break;
      case 3:
        value = local.tm_year % 100;
        break;
      case 4:
        value = local.tm_sec;
        break;
      case 5:
        value = local.tm_wday;
        break;
      case 6:
        value = local.tm_mday;
        break;
      case 7:
        value = local.tm_mon;
        break;
      case 8:
        value = local.tm_year;
        break;
      case 9:
        value = local.tm_isdst;
        break;
      case 10:
        value = now.seconds;
        break;
      case 11: {
        WallTime start = Split(clock.Started());
        value = (now.seconds - start.seconds) * 1000 - start.millis + now.millis;
        break;
      }
      default:
        SetRunError(err::kArgOutOfRange);
        return 0.0f;
    }
    return static_cast<float>(value);
  }
};

class VerFunc final : public NumericArgFunc {
 public:
  VerFunc(const KeyToken* key, NumericExpPtr arg) : NumericArgFunc(key, std::move(arg)) {}
  float Evaluate() override {
    // The parts of V0.94.0.154; 0 runs minor and build together.
    static constexpr float kParts[] = {94154.0f, 0.0f, 94.0f, 154.0f};
    int n = Selector(arg_->Evaluate());
    if (n < 0 || n > 3) {
      SetRunError(err::kArgOutOfRange);
      return 0.0f;
    }
    return kParts[n];
  }
};

// The argument is kept for listing only: these never evaluate it.
class TidFunc final : public NumericArgFunc {
 public:
  TidFunc(const KeyToken* key, NumericExpPtr arg) : NumericArgFunc(key, std::move(arg)) {}
  // The task is the interpreter's process.
  float Evaluate() override { return static_cast<float>(TheClock().ProcessId()); }
};

class ZeroFunc final : public NumericArgFunc {
 public:
  ZeroFunc(const KeyToken* key, NumericExpPtr arg) : NumericArgFunc(key, std::move(arg)) {}
  float Evaluate() override { return 0.0f; }
};

}  // namespace

NumericExpPtr MakeSystemFunction(const KeyToken* key, NumericExpPtr arg, ExprContext& prog) {
  switch (key->Code()) {
    case tok::kFnTim:
      return std::make_unique<TimFunc>(key, std::move(arg));
    case tok::kFnVer:
      return std::make_unique<VerFunc>(key, std::move(arg));
    case tok::kFnTyp:
    case tok::kFnRec:
    case tok::kFnItm:
      return prog.FileFunction(key, std::move(arg));
    case tok::kFnTid:
      return std::make_unique<TidFunc>(key, std::move(arg));
    case tok::kFnBrk:
    case tok::kFnSys:
      return std::make_unique<ZeroFunc>(key, std::move(arg));
    default:
      return nullptr;
  }
}
