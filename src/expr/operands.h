// How hot nodes reach their numeric operands. A simple variable or a literal
// is read in place instead of through its node's virtual Evaluate, and
// parentheses are looked through; the operand nodes stay in the tree, which
// lists and sizes them as before.
#pragma once
#include "expr/operators.h"
#include "expr/variables.h"

// Any node: one virtual call.
struct TreeOperand {
  explicit TreeOperand(NumericExp* node) : node_(node) {}
  float Get() const { return node_->Evaluate(); }
  NumericExp* node_;
};

// A simple variable: its storage read inline, with the undefined-value check.
struct VarOperand {
  explicit VarOperand(NumericExp* node) : var_(static_cast<NumericSimpleVar*>(node)) {}
  float Get() const { return var_->Evaluate(); }  // the class is final: no virtual call
  NumericSimpleVar* var_;
};

// A literal: its value, copied.
struct ConstOperand {
  explicit ConstOperand(NumericExp* node) { LiteralValue(node, &value_); }
  explicit ConstOperand(float value) : value_(value) {}
  float Get() const { return value_; }
  float value_ = 0.0f;
};

// A product of two simple variables (X*X, A*B), the commonest operator
// subtree: multiplied in place, a virtual call fewer for the sum or the
// comparison it stands in. The right factor is read first, as its node reads it.
struct ProductOperand {
  explicit ProductOperand(NumericExp* node)
      : l_(ProductFactor(node, false)), r_(ProductFactor(node, true)) {}
  float Get() const {
    float right = r_.Get();
    return MultiplyOp::Apply(l_.Get(), right);
  }
  VarOperand l_, r_;
};

enum class OperandForm { kTree, kVar, kConst, kProduct };
// The form that reads node (already looked through).
OperandForm FormOf(NumericExp* node);

// Calls make with the operand that fits node (looked through here), so that a
// factory names each combination of forms once.
template <typename Make>
auto WithOperand(NumericExp* node, Make make) {
  node = LookThrough(node);
  switch (FormOf(node)) {
    case OperandForm::kVar:
      return make(VarOperand(node));
    case OperandForm::kConst:
      return make(ConstOperand(node));
    default:
      return make(TreeOperand(node));
  }
}

// The same with the product form too, for the operands of sums, differences
// and assignments, where products stand most (ZR*ZR+ZI*ZI).
template <typename Make>
auto WithSumOperand(NumericExp* node, Make make) {
  if (FormOf(LookThrough(node)) == OperandForm::kProduct)
    return make(ProductOperand(LookThrough(node)));
  return WithOperand(node, make);
}

// The same without the literal form, for the left operand of a node that has
// its literal right operand folded in.
template <typename Make>
auto WithLeftOperand(NumericExp* node, Make make) {
  node = LookThrough(node);
  switch (FormOf(node)) {
    case OperandForm::kVar:
      return make(VarOperand(node));
    case OperandForm::kProduct:
      return make(ProductOperand(node));
    default:
      return make(TreeOperand(node));
  }
}

// Variables and trees only, for nodes whose operands are seldom constant.
template <typename Make>
auto WithVarOperand(NumericExp* node, Make make) {
  node = LookThrough(node);
  if (FormOf(node) == OperandForm::kVar) return make(VarOperand(node));
  return make(TreeOperand(node));
}
