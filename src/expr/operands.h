// How hot nodes reach their numeric operands. A simple variable or a literal
// is read in place instead of through its node's virtual Evaluate, and
// parentheses are looked through; the operand nodes stay in the tree, which
// lists and sizes them as before.
#pragma once
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

enum class OperandForm { kTree, kVar, kConst };
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

// The same without the literal form, for nodes whose operands are seldom constant.
template <typename Make>
auto WithVarOperand(NumericExp* node, Make make) {
  node = LookThrough(node);
  if (FormOf(node) == OperandForm::kVar) return make(VarOperand(node));
  return make(TreeOperand(node));
}
