// Binary operator traits: kind code, listing text, which operand is evaluated
// first, and the operation. Shared by the expression nodes and by LET's update
// form, so both evaluate in the same order.
#pragma once
#include <cmath>
#include <cstdint>

#include "base/convert.h"
#include "expr/numeric_exp.h"
#include "lex/token.h"

inline float Truth(bool value) { return value ? 1.0f : 0.0f; }

struct FactorOp {
  static constexpr TokenCode kKind = tok::kCaret;
  static constexpr bool kHot = false;
  static constexpr const char* kText = "^";
  static constexpr bool kRightFirst = true;
  static float Apply(float a, float b) {
    return static_cast<float>(std::pow(double{a}, double{b}));
  }
};
struct MultiplyOp {
  static constexpr TokenCode kKind = tok::kStar;
  static constexpr bool kHot = true;
  static constexpr const char* kText = "*";
  static constexpr bool kRightFirst = true;
  static float Apply(float a, float b) { return a * b; }
};
struct DivideOp {
  static constexpr TokenCode kKind = tok::kSlash;
  static constexpr bool kHot = true;
  static constexpr const char* kText = "/";
  static constexpr bool kRightFirst = false;
  static float Apply(float a, float b) { return a / b; }
};
struct ModOp {
  static constexpr TokenCode kKind = tok::kMod;
  static constexpr bool kHot = true;
  static constexpr const char* kText = " MOD ";
  static constexpr bool kRightFirst = true;
  // fmod is exact, so for whole operands the integer remainder gives the same
  // bits (the sign of the dividend, -0 included) at a tenth of fmod's cost.
  static float Apply(float a, float b) {
    int32_t x, y;
    if (conv::ExactInt32(a, &x) && conv::ExactInt32(b, &y) && y != 0)
      return std::copysign(static_cast<float>(x % y), a);
    return static_cast<float>(std::fmod(double{a}, double{b}));
  }
};
struct DivOp {
  static constexpr TokenCode kKind = tok::kDiv;
  static constexpr bool kHot = false;
  static constexpr const char* kText = " DIV ";
  static constexpr bool kRightFirst = false;
  static float Apply(float a, float b) { return static_cast<float>(std::floor(double{a / b})); }
};
struct AddOp {
  static constexpr TokenCode kKind = tok::kPlus;
  static constexpr bool kHot = true;
  static constexpr const char* kText = "+";
  static constexpr bool kRightFirst = true;
  static float Apply(float a, float b) { return a + b; }
};
struct SubtractOp {
  static constexpr TokenCode kKind = tok::kMinus;
  static constexpr bool kHot = true;
  static constexpr const char* kText = "-";
  static constexpr bool kRightFirst = false;
  static float Apply(float a, float b) { return a - b; }
};
struct MinOp {
  static constexpr TokenCode kKind = tok::kMin;
  static constexpr bool kHot = false;
  static constexpr const char* kText = " MIN ";
  static constexpr bool kRightFirst = false;
  static float Apply(float a, float b) { return a < b ? a : b; }
};
struct MaxOp {
  static constexpr TokenCode kKind = tok::kMax;
  static constexpr bool kHot = false;
  static constexpr const char* kText = " MAX ";
  static constexpr bool kRightFirst = false;
  static float Apply(float a, float b) { return a > b ? a : b; }
};
struct EqOp {
  static constexpr TokenCode kKind = tok::kEQ;
  static constexpr bool kHot = true;
  static constexpr const char* kText = "=";
  static constexpr bool kRightFirst = false;
  static bool Holds(float a, float b) { return a == b; }
  static float Apply(float a, float b) { return Truth(Holds(a, b)); }
};
struct NeOp {
  static constexpr TokenCode kKind = tok::kNE;
  static constexpr bool kHot = true;
  static constexpr const char* kText = "<>";
  static constexpr bool kRightFirst = false;
  static bool Holds(float a, float b) { return !(a == b); }
  static float Apply(float a, float b) { return Truth(Holds(a, b)); }
};
struct LtOp {
  static constexpr TokenCode kKind = tok::kLT;
  static constexpr bool kHot = true;
  static constexpr const char* kText = "<";
  static constexpr bool kRightFirst = false;
  static bool Holds(float a, float b) { return a < b; }
  static float Apply(float a, float b) { return Truth(Holds(a, b)); }
};
struct LeOp {
  static constexpr TokenCode kKind = tok::kLE;
  static constexpr bool kHot = true;
  static constexpr const char* kText = "<=";
  static constexpr bool kRightFirst = false;
  static bool Holds(float a, float b) { return a <= b; }
  static float Apply(float a, float b) { return Truth(Holds(a, b)); }
};
struct GtOp {
  static constexpr TokenCode kKind = tok::kGT;
  static constexpr bool kHot = true;
  static constexpr const char* kText = ">";
  static constexpr bool kRightFirst = false;
  static bool Holds(float a, float b) { return a > b; }
  static float Apply(float a, float b) { return Truth(Holds(a, b)); }
};
struct GeOp {
  static constexpr TokenCode kKind = tok::kGE;
  static constexpr bool kHot = true;
  static constexpr const char* kText = ">=";
  static constexpr bool kRightFirst = false;
  static bool Holds(float a, float b) { return a >= b; }
  static float Apply(float a, float b) { return Truth(Holds(a, b)); }
};
struct XorOp {
  static constexpr TokenCode kKind = tok::kXor;
  static constexpr bool kHot = false;
  static constexpr const char* kText = " XOR ";
  static constexpr bool kRightFirst = false;
  static float Apply(float a, float b) { return Truth((a != 0.0f) != (b != 0.0f)); }
};
struct EqvOp {
  static constexpr TokenCode kKind = tok::kEqv;
  static constexpr bool kHot = false;
  static constexpr const char* kText = " EQV ";
  static constexpr bool kRightFirst = false;
  static float Apply(float a, float b) { return Truth((a != 0.0f) == (b != 0.0f)); }
};

// The operands of a binary operator node, for code that reads its shape.
class TwoOperands {
 public:
  virtual ~TwoOperands() = default;
  // *right is null when a literal right operand was folded into *constant.
  virtual void Operands(NumericExp** left, NumericExp** right, float* constant) const = 0;
};
