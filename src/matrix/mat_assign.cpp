// MAT assignments: whole arrays set to zeros, ones or the identity, copied,
// added, multiplied, scaled, transposed and inverted. The target takes the
// bounds of the result, within the room it was created with.
#include <algorithm>

#include "lex/parse_attempt.h"
#include "matrix/mat.h"
#include "matrix/matrix.h"
#include "platform/break_flag.h"
#include "stmt/stmt_context.h"

namespace {

bool SameBounds(const ArrayShape& a, const ArrayShape& b) {
  std::span<const uint32_t> x = a.dims.Bounds(), y = b.dims.Bounds();
  return std::equal(x.begin(), x.end(), y.begin(), y.end());
}

bool IsMatrix(const ArrayShape& a) { return a.dims.Count() == 2; }

// "MAT A=" or "MAT A$=" and what the subclass lists after it.
template <class TargetVar>
class MatAssignBase : public Statement {
 public:
  explicit MatAssignBase(std::unique_ptr<TargetVar> target) : target_(std::move(target)) {}
  TokenCode Code() const override { return tok::kMat; }
  void List(std::string& out) const override {
    out += "MAT ";
    target_->List(out);
    out += '=';
    ListValue(out);
  }

 protected:
  virtual void ListValue(std::string& out) const = 0;
  auto& Target() const { return target_->Data(); }
  size_t TargetSize() const { return sizeof *this + sizeof *target_; }

 private:
  std::unique_ptr<TargetVar> target_;
};

class MatNumericAssignStmt : public MatAssignBase<NumericMatrixVar> {
 public:
  using MatAssignBase::MatAssignBase;

 protected:
  // Reshapes the target to the result's bounds and stores the work area there.
  Statement* Store(std::span<const uint32_t> bounds, const MatrixWork& work) {
    NumericScriptData& a = Target();
    if (ErrorCode code = a.Reshape(bounds)) return Fail(code);
    StoreResult(work, a.count, a.elements.get());
    return successor_;
  }
};

// MAT A=ZER, CON or IDN, with new bounds when given.
class MatNumericSetStmt final : public MatNumericAssignStmt {
 public:
  MatNumericSetStmt(std::unique_ptr<NumericMatrixVar> target, TokenCode fill, NewBoundsPtr bounds)
      : MatNumericAssignStmt(std::move(target)), fill_(fill), bounds_(std::move(bounds)) {}
  Statement* Execute() override {
    NumericScriptData& a = Target();
    uint32_t bounds[NewBounds::kMax];
    size_t count = 0;
    if (bounds_)
      if (ErrorCode code = bounds_->Evaluate(bounds, &count)) return Fail(code);
    std::span<const uint32_t> shape =
        bounds_ ? std::span<const uint32_t>(bounds, count) : a.dims.Bounds();
    // The identity needs a square matrix, checked before anything changes.
    if (fill_ == tok::kIdn && (shape.size() != 2 || shape[0] != shape[1]))
      return Fail(err::kDimensionMismatch);
    if (bounds_)
      if (ErrorCode code = a.Reshape(shape)) return Fail(code);
    std::fill_n(a.elements.get(), a.count, fill_ == tok::kCon ? 1.0f : 0.0f);
    if (fill_ == tok::kIdn)
      for (uint32_t i = 0; i < a.count; i += a.dims.Bound(1) + 1) a.elements[i] = 1.0f;
    return successor_;
  }
  size_t Size() const override { return TargetSize() + (bounds_ ? bounds_->Size() : 0); }

 protected:
  void ListValue(std::string& out) const override {
    out += fill_ == tok::kZer ? "ZER" : fill_ == tok::kCon ? "CON" : "IDN";
    if (bounds_) bounds_->List(out);
  }

 private:
  TokenCode fill_;  // tok::kZer, kCon or kIdn
  NewBoundsPtr bounds_;
};

class MatCopyStmt final : public MatNumericAssignStmt {
 public:
  MatCopyStmt(std::unique_ptr<NumericMatrixVar> target, std::unique_ptr<NumericMatrixVar> source)
      : MatNumericAssignStmt(std::move(target)), source_(std::move(source)) {}
  Statement* Execute() override {
    NumericScriptData& a = Target();
    const NumericScriptData& b = source_->Data();
    if (!AllDefined(b.elements.get(), b.count)) return Fail(err::kUndefinedValue);
    if (&a == &b) return successor_;
    if (ErrorCode code = a.Reshape(b.dims.Bounds())) return Fail(code);
    std::copy_n(b.elements.get(), b.count, a.elements.get());
    return successor_;
  }
  size_t Size() const override { return TargetSize() + sizeof *source_; }

 protected:
  void ListValue(std::string& out) const override { source_->List(out); }

 private:
  std::unique_ptr<NumericMatrixVar> source_;
};

// MAT A=B+C and MAT A=B-C, element by element.
class MatSumStmt final : public MatNumericAssignStmt {
 public:
  MatSumStmt(std::unique_ptr<NumericMatrixVar> target, std::unique_ptr<NumericMatrixVar> left,
             TokenCode op, std::unique_ptr<NumericMatrixVar> right)
      : MatNumericAssignStmt(std::move(target)),
        left_(std::move(left)),
        right_(std::move(right)),
        op_(op) {}
  Statement* Execute() override {
    NumericScriptData& a = Target();
    const NumericScriptData& b = left_->Data();
    const NumericScriptData& c = right_->Data();
    if (!SameBounds(b, c)) return Fail(err::kDimensionMismatch);
    if (!AllDefined(b.elements.get(), b.count) || !AllDefined(c.elements.get(), c.count))
      return Fail(err::kUndefinedValue);
    if (ErrorCode code = a.Reshape(b.dims.Bounds())) return Fail(code);
    // Element i depends only on elements i, so a target among the operands is harmless.
    float* out = a.elements.get();
    const float* x = b.elements.get();
    const float* y = c.elements.get();
    if (op_ == tok::kPlus)
      for (uint32_t i = 0; i < a.count; ++i) out[i] = x[i] + y[i];
    else
      for (uint32_t i = 0; i < a.count; ++i) out[i] = x[i] - y[i];
    return successor_;
  }
  size_t Size() const override { return TargetSize() + sizeof *left_ + sizeof *right_; }

 protected:
  void ListValue(std::string& out) const override {
    left_->List(out);
    out += op_ == tok::kPlus ? '+' : '-';
    right_->List(out);
  }

 private:
  std::unique_ptr<NumericMatrixVar> left_, right_;
  TokenCode op_;  // tok::kPlus or tok::kMinus
};

// MAT A=(k)*B.
class MatScaleStmt final : public MatNumericAssignStmt {
 public:
  MatScaleStmt(std::unique_ptr<NumericMatrixVar> target, NumericExpPtr factor,
               std::unique_ptr<NumericMatrixVar> source)
      : MatNumericAssignStmt(std::move(target)),
        factor_(std::move(factor)),
        source_(std::move(source)) {}
  Statement* Execute() override {
    float k = factor_->Evaluate();
    if (g_err.run) return successor_;
    NumericScriptData& a = Target();
    const NumericScriptData& b = source_->Data();
    if (!AllDefined(b.elements.get(), b.count)) return Fail(err::kUndefinedValue);
    if (ErrorCode code = a.Reshape(b.dims.Bounds())) return Fail(code);
    for (uint32_t i = 0; i < a.count; ++i) a.elements[i] = k * b.elements[i];
    return successor_;
  }
  size_t Size() const override { return TargetSize() + factor_->Size() + sizeof *source_; }

 protected:
  void ListValue(std::string& out) const override {
    out += '(';
    factor_->List(out);
    out += ")*";
    source_->List(out);
  }

 private:
  NumericExpPtr factor_;
  std::unique_ptr<NumericMatrixVar> source_;
};

// MAT A=B*C: matrix by matrix, matrix by vector (a column) or vector (a row)
// by matrix. The product is formed in the work area first, so A may be B or C.
class MatProductStmt final : public MatNumericAssignStmt {
 public:
  MatProductStmt(std::unique_ptr<NumericMatrixVar> target, std::unique_ptr<NumericMatrixVar> left,
                 std::unique_ptr<NumericMatrixVar> right, MatrixWork& work)
      : MatNumericAssignStmt(std::move(target)),
        left_(std::move(left)),
        right_(std::move(right)),
        work_(work) {}
  Statement* Execute() override {
    const NumericScriptData& b = left_->Data();
    const NumericScriptData& c = right_->Data();
    if (b.dims.Count() > 2 || c.dims.Count() > 2 || (!IsMatrix(b) && !IsMatrix(c)))
      return Fail(err::kDimensionMismatch);
    // A vector on the left is one row, on the right one column.
    uint32_t m = IsMatrix(b) ? b.dims.Bound(0) : 1;
    uint32_t n = IsMatrix(b) ? b.dims.Bound(1) : b.dims.Bound(0);
    uint32_t p = IsMatrix(c) ? c.dims.Bound(1) : 1;
    if (c.dims.Bound(0) != n) return Fail(err::kDimensionMismatch);
    uint32_t bounds[2] = {m, p};
    std::span<const uint32_t> shape(bounds, 2);
    if (!IsMatrix(b)) shape = shape.subspan(1);
    if (!IsMatrix(c)) shape = shape.first(1);
    if (uint64_t{m} * p > Target().capacity) return Fail(err::kDimensionMismatch);
    if (!AllDefined(b.elements.get(), b.count) || !AllDefined(c.elements.get(), c.count))
      return Fail(err::kUndefinedValue);
    if (ErrorCode code =
            MatrixProduct(b.elements.get(), c.elements.get(), m, n, p, work_, TestAndClearBreak))
      return Fail(code);
    return Store(shape, work_);
  }
  size_t Size() const override { return TargetSize() + sizeof *left_ + sizeof *right_; }

 protected:
  void ListValue(std::string& out) const override {
    left_->List(out);
    out += '*';
    right_->List(out);
  }

 private:
  std::unique_ptr<NumericMatrixVar> left_, right_;
  MatrixWork& work_;
};

// MAT A=TRN(B) and MAT A=INV(B), both of a two-dimensional B, formed in the
// work area first.
class MatFunctionStmt final : public MatNumericAssignStmt {
 public:
  MatFunctionStmt(std::unique_ptr<NumericMatrixVar> target, TokenCode function,
                  std::unique_ptr<NumericMatrixVar> source, MatrixWork& work)
      : MatNumericAssignStmt(std::move(target)),
        function_(function),
        source_(std::move(source)),
        work_(work) {}
  Statement* Execute() override {
    const NumericScriptData& b = source_->Data();
    if (!IsMatrix(b)) return Fail(err::kDimensionMismatch);
    uint32_t rows = b.dims.Bound(0), columns = b.dims.Bound(1);
    if (function_ == tok::kInv && rows != columns) return Fail(err::kDimensionMismatch);
    if (b.count > Target().capacity) return Fail(err::kDimensionMismatch);
    if (!AllDefined(b.elements.get(), b.count)) return Fail(err::kUndefinedValue);
    ErrorCode code = function_ == tok::kTrn
                         ? MatrixTranspose(b.elements.get(), rows, columns, work_)
                         : MatrixInverse(b.elements.get(), rows, work_, TestAndClearBreak);
    if (code) return Fail(code);
    uint32_t bounds[2] = {columns, rows};
    return Store(bounds, work_);
  }
  size_t Size() const override { return TargetSize() + sizeof *source_; }

 protected:
  void ListValue(std::string& out) const override {
    out += function_ == tok::kTrn ? "TRN(" : "INV(";
    source_->List(out);
    out += ')';
  }

 private:
  TokenCode function_;  // tok::kTrn or tok::kInv
  std::unique_ptr<NumericMatrixVar> source_;
  MatrixWork& work_;
};

// --- String arrays.

using MatStringAssignBase = MatAssignBase<StringMatrixVar>;

// MAT A$=ZER: every element empty, after new bounds when given.
class MatStringSetStmt final : public MatStringAssignBase {
 public:
  MatStringSetStmt(std::unique_ptr<StringMatrixVar> target, NewBoundsPtr bounds)
      : MatStringAssignBase(std::move(target)), bounds_(std::move(bounds)) {}
  Statement* Execute() override {
    StringScriptData& a = Target();
    if (bounds_) {
      uint32_t bounds[NewBounds::kMax];
      size_t count;
      if (ErrorCode code = bounds_->Evaluate(bounds, &count)) return Fail(code);
      if (ErrorCode code = a.Reshape({bounds, count})) return Fail(code);
    }
    for (uint32_t i = 0; i < a.count; ++i) a.elements[i].Assign({});
    return successor_;
  }
  size_t Size() const override { return TargetSize() + (bounds_ ? bounds_->Size() : 0); }

 protected:
  void ListValue(std::string& out) const override {
    out += "ZER";
    if (bounds_) bounds_->List(out);
  }

 private:
  NewBoundsPtr bounds_;
};

class MatStringCopyStmt final : public MatStringAssignBase {
 public:
  MatStringCopyStmt(std::unique_ptr<StringMatrixVar> target,
                    std::unique_ptr<StringMatrixVar> source)
      : MatStringAssignBase(std::move(target)), source_(std::move(source)) {}
  Statement* Execute() override {
    StringScriptData& a = Target();
    const StringScriptData& b = source_->Data();
    if (&a == &b) return successor_;
    if (ErrorCode code = a.Reshape(b.dims.Bounds())) return Fail(code);
    for (uint32_t i = 0; i < a.count; ++i) a.elements[i].Assign(b.elements[i].View());
    return successor_;
  }
  size_t Size() const override { return TargetSize() + sizeof *source_; }

 protected:
  void ListValue(std::string& out) const override { source_->List(out); }

 private:
  std::unique_ptr<StringMatrixVar> source_;
};

// --- Parsing.

using NumericMatrixPtr = std::unique_ptr<NumericMatrixVar>;

// The array after an operator or inside TRN( ) and INV( ): 22 when missing.
NumericMatrixPtr RequireMatrix(StmtContext& p) {
  NumericMatrixPtr var = ParseNumericMatrix(p);
  if (!var) SetParseError(err::kBadMatrixVar);
  return var;
}

// What follows "MAT A=" for a numeric target; null with the parse error set.
StatementPtr ParseNumericValue(StmtContext& p, NumericMatrixPtr target) {
  TokenCode code = p.GetToken();
  switch (code) {
    case tok::kZer:
    case tok::kCon:
    case tok::kIdn: {
      NewBoundsPtr bounds;
      if (!NewBounds::Parse(p, &bounds)) return nullptr;
      return std::make_unique<MatNumericSetStmt>(std::move(target), code, std::move(bounds));
    }
    case tok::kTrn:
    case tok::kInv: {
      if (!p.Accept(tok::kLParen)) return nullptr;
      NumericMatrixPtr source = RequireMatrix(p);
      if (!source || !p.Accept(tok::kRParen)) return nullptr;
      return std::make_unique<MatFunctionStmt>(std::move(target), code, std::move(source),
                                               *p.run.matrix);
    }
    case tok::kLParen: {
      NumericExpPtr factor = ParseNumericExp(p);
      if (!factor || !p.Accept(tok::kRParen) || !p.Accept(tok::kStar)) return nullptr;
      NumericMatrixPtr source = RequireMatrix(p);
      if (!source) return nullptr;
      return std::make_unique<MatScaleStmt>(std::move(target), std::move(factor),
                                            std::move(source));
    }
    default:
      break;
  }
  p.BackUp();
  NumericMatrixPtr left = ParseNumericMatrix(p);
  if (!left) return nullptr;
  TokenCode op = p.GetToken();
  if (op != tok::kPlus && op != tok::kMinus && op != tok::kStar) {
    p.BackUp();
    return std::make_unique<MatCopyStmt>(std::move(target), std::move(left));
  }
  NumericMatrixPtr right = RequireMatrix(p);
  if (!right) return nullptr;
  if (op == tok::kStar)
    return std::make_unique<MatProductStmt>(std::move(target), std::move(left), std::move(right),
                                            *p.run.matrix);
  return std::make_unique<MatSumStmt>(std::move(target), std::move(left), op, std::move(right));
}

StatementPtr ParseStringValue(StmtContext& p, std::unique_ptr<StringMatrixVar> target) {
  if (p.Accept(tok::kZer)) {
    NewBoundsPtr bounds;
    if (!NewBounds::Parse(p, &bounds)) return nullptr;
    return std::make_unique<MatStringSetStmt>(std::move(target), std::move(bounds));
  }
  std::unique_ptr<StringMatrixVar> source = ParseStringMatrix(p);
  if (!source) return nullptr;
  return std::make_unique<MatStringCopyStmt>(std::move(target), std::move(source));
}

}  // namespace

StatementPtr ParseMat(StmtContext& p) {
  if (p.Accept(tok::kRead)) return ParseMatRead(p);
  if (p.Accept(tok::kInput)) return ParseMatInput(p);
  if (p.Accept(tok::kPrint)) return ParseMatPrint(p);
  ParseAttempt attempt(p);
  StatementPtr stmt;
  if (NumericMatrixPtr target = ParseNumericMatrix(p)) {
    if (p.Accept(tok::kEQ)) stmt = ParseNumericValue(p, std::move(target));
  } else if (auto text = ParseStringMatrix(p)) {
    if (p.Accept(tok::kEQ)) stmt = ParseStringValue(p, std::move(text));
  } else {
    SetParseError(err::kBadMatrixVar);
    return nullptr;
  }
  if (!stmt) return attempt.Fail(err::kBadMatrixAssign);
  return stmt;
}
