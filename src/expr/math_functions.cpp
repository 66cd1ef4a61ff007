// The mathematical functions, RND and PI: double-precision library calls
// rounded back to float.
#include <chrono>
#include <cstring>

#include "base/convert.h"
#include "expr/function_nodes.h"
#include "expr/random.h"
#include "platform/system_clock.h"

namespace {

struct AbsOp {
  static double Apply(double x) { return std::fabs(x); }
};
struct AtnOp {
  static double Apply(double x) { return std::atan(x); }
};
struct CosOp {
  static double Apply(double x) { return std::cos(x); }
};
struct ExpOp {
  static double Apply(double x) { return std::exp(x); }
};
struct IntOp {
  static double Apply(double x) { return std::floor(x); }
};
struct FixOp {
  static double Apply(double x) { return std::trunc(x); }
};
struct LogOp {
  static double Apply(double x) { return std::log(x); }
};
struct SgnOp {
  // NaN is neither zero nor positive, so it gives -1.
  static double Apply(double x) { return x == 0 ? 0 : x > 0 ? 1 : -1; }
};
struct SinOp {
  static double Apply(double x) { return std::sin(x); }
};
struct SqrOp {
  static double Apply(double x) { return std::sqrt(x); }
};
struct TanOp {
  static double Apply(double x) { return std::tan(x); }
};

template <typename Op>
class MathFunc final : public NumericArgFunc {
 public:
  MathFunc(const KeyToken* key, NumericExpPtr arg) : NumericArgFunc(key, std::move(arg)) {}
  float Evaluate() override { return static_cast<float>(Op::Apply(double{arg_->Evaluate()})); }
};

// The linear congruential generator behind RND; state 1 until seeded.
uint32_t g_seed = 1;

class RndFunc final : public NumericArgFunc {
 public:
  RndFunc(const KeyToken* key, NumericExpPtr arg) : NumericArgFunc(key, std::move(arg)) {}
  float Evaluate() override {
    float x = arg_->Evaluate();
    if (x < 0) g_seed = SeedOf(x);
    g_seed = g_seed * 214013u + 2531011u;
    auto r = static_cast<float>((g_seed >> 16) & 0x7FFF);
    // (r - 1) / 32768: r = 0 gives a small negative number, which is kept.
    return (r + 32767.0f) * (1.0f / 32768.0f) - 1.0f;
  }

 private:
  // The integer part of x * 1000 (in float), wrapped to 32 bits; past the
  // 64-bit range (-1E38 * 1000 is minus infinity) the seed is 0.
  static uint32_t SeedOf(float x) {
    int64_t whole = 0;
    conv::ToIntIn(x * 1000.0f, INT64_MIN, INT64_MAX, &whole);
    return static_cast<uint32_t>(whole);
  }
};

class PiFunc final : public NumericLibFunc {
 public:
  explicit PiFunc(const KeyToken* key) : NumericLibFunc(key) {}
  size_t Size() const override { return sizeof *this; }
  float Evaluate() override { return 3.14159265358979f; }
};

}  // namespace

namespace {

// A bijection on 32 bits that spreads every input bit over the whole word.
uint32_t Mix32(uint32_t x) {
  x ^= x >> 16;
  x *= 0x7FEB352Du;
  x ^= x >> 15;
  x *= 0x846CA68Bu;
  x ^= x >> 16;
  return x;
}

// Folds 64 bits into one well-spread value.
uint64_t Mix64(uint64_t x) {
  x += 0x9E3779B97F4A7C15u;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
  return x ^ (x >> 31);
}

}  // namespace

void SeedRandomFromClock() {
  // Two seedings in one microsecond still differ.
  static uint64_t calls = 0;
  const SystemClock& clock = TheClock();
  auto micros =
      std::chrono::duration_cast<std::chrono::microseconds>(clock.Now().time_since_epoch()).count();
  uint64_t mixed =
      Mix64(static_cast<uint64_t>(micros) ^ (uint64_t{clock.ProcessId()} << 40) ^ Mix64(++calls));
  g_seed = static_cast<uint32_t>(mixed ^ (mixed >> 32));
}

void SeedRandom(float x) {
  // Distinct values have distinct bit patterns, and Mix32 keeps them apart.
  uint32_t bits = 0;  // -0 and 0 seed alike
  if (x != 0.0f) std::memcpy(&bits, &x, sizeof bits);
  g_seed = Mix32(bits);
}

NumericExpPtr MakePi(const KeyToken* key) { return std::make_unique<PiFunc>(key); }

NumericExpPtr MakeMathFunction(const KeyToken* key, NumericExpPtr arg) {
  switch (key->Code()) {
    case tok::kFnAbs:
      return std::make_unique<MathFunc<AbsOp>>(key, std::move(arg));
    case tok::kFnAtn:
      return std::make_unique<MathFunc<AtnOp>>(key, std::move(arg));
    case tok::kFnCos:
      return std::make_unique<MathFunc<CosOp>>(key, std::move(arg));
    case tok::kFnExp:
      return std::make_unique<MathFunc<ExpOp>>(key, std::move(arg));
    case tok::kFnInt:
      return std::make_unique<MathFunc<IntOp>>(key, std::move(arg));
    case tok::kFnFix:
      return std::make_unique<MathFunc<FixOp>>(key, std::move(arg));
    case tok::kFnLog:
      return std::make_unique<MathFunc<LogOp>>(key, std::move(arg));
    case tok::kFnRnd:
      return std::make_unique<RndFunc>(key, std::move(arg));
    case tok::kFnSgn:
      return std::make_unique<MathFunc<SgnOp>>(key, std::move(arg));
    case tok::kFnSin:
      return std::make_unique<MathFunc<SinOp>>(key, std::move(arg));
    case tok::kFnSqr:
      return std::make_unique<MathFunc<SqrOp>>(key, std::move(arg));
    case tok::kFnTan:
      return std::make_unique<MathFunc<TanOp>>(key, std::move(arg));
    default:
      return nullptr;
  }
}
