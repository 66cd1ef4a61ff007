// The mathematical functions, RND and PI: double-precision library calls
// rounded back to float.
#include <ctime>

#include "base/convert.h"
#include "expr/function_nodes.h"
#include "expr/random.h"

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

void ReseedRandom() { g_seed = static_cast<uint32_t>(std::time(nullptr)); }

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
