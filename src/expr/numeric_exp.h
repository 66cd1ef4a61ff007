// Numeric expression trees: parsed once, listed back, evaluated in 32-bit floats.
// Inherited names: an operator's EC form (BinaryEC) has its right operand, a
// literal, folded in as a constant; Primary is a parenthesised expression.
#pragma once
#include <cstdarg>
#include <cstddef>
#include <memory>
#include <string>

#include "lex/token.h"

class ExprContext;

class NumericExp {
 public:
  // Kind codes of the nodes that are no operator.
  static constexpr int kLiteral = 22;
  static constexpr int kParens = 23;
  static constexpr int kNegate = 24;

  virtual ~NumericExp() = default;
  virtual int Kind() const = 0;
  virtual size_t Size() const = 0;  // this node and its operands, in bytes
  virtual void List(std::string& out) const = 0;
  virtual float Evaluate() = 0;
  // The value as a condition (not 0). Relations and logical operators answer
  // without making a 1 or 0 first, so that IF and WHILE branch on the comparison.
  virtual bool Test() { return Evaluate() != 0.0f; }
};
using NumericExpPtr = std::unique_ptr<NumericExp>;

// Appends printf-formatted text to a listing.
void Appendf(std::string& out, const char* format, ...) __attribute__((format(printf, 2, 3)));

// The full numeric grammar, with the string-comparison fallback at the relation level.
NumericExpPtr ParseNumericExp(ExprContext& prog);
// A sum-level expression with MIN/MAX: no relations and no logical operators.
NumericExpPtr ParseNumericSum(ExprContext& prog);
// One primary: constant, function call, variable or parenthesised expression.
NumericExpPtr ParseNumericPrimary(ExprContext& prog);

// Built-in numeric function call (category tok::kNumFunc), or null without an error
// when the next token is no such function.
NumericExpPtr ParseNumericFunction(ExprContext& prog);
// User numeric function call (category tok::kNumUserFn), or null.
NumericExpPtr ParseNumericUserCall(ExprContext& prog);

// A numeric literal node, for parsers that build trees of their own.
NumericExpPtr MakeNumericLit(float value);
// True, with its value, when node is a literal.
bool LiteralValue(const NumericExp* node, float* value);
// True, with the operands, when node is an arithmetic operator (+ - * /);
// *right is null when a literal right operand was folded into *constant.
bool ArithmeticOperands(NumericExp* node, NumericExp** left, NumericExp** right, float* constant);
// A factor of a product of two simple variables (FormOf finds them), looked through.
NumericExp* ProductFactor(NumericExp* node, bool right);
// The node inside any parentheses around it (a parenthesised node only passes
// its operand's value on).
NumericExp* LookThrough(NumericExp* node);
// The node of a binary operator code (arithmetic, MIN/MAX, relation or logical)
// over two trees, unfolded; null for any other code.
NumericExpPtr MakeNumericOperator(TokenCode op, NumericExpPtr left, NumericExpPtr right);
