// What the MAT statements share: new bounds written after an array, the arrays
// of READ, INPUT and PRINT lists with their element walk, and the seams where
// values come from (DATA) and go to (the console): a data file is another
// source and another sink.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "expr/variables.h"
#include "stmt/statement.h"

// New bounds after an array or after ZER, CON and IDN: "(m)" or "(m,n)" with
// expressions, evaluated each time the statement runs.
class NewBounds final {
 public:
  static constexpr size_t kMax = 2;

  // Parses the bounds if a bracket follows: true with *out set, or with *out
  // null when none follows; false with the parse error set when they are malformed.
  static bool Parse(StmtContext& prog, std::unique_ptr<NewBounds>* out);
  size_t Size() const;
  void List(std::string& out) const;
  // The evaluated bounds; kArgOutOfRange for one that is no count from 1 to the element limit.
  ErrorCode Evaluate(uint32_t (&bounds)[kMax], size_t* count) const;

 private:
  NumericExpPtr exps_[kMax];
  size_t count_ = 0;
};
using NewBoundsPtr = std::unique_ptr<NewBounds>;

// Where MAT PRINT writes an array, row by row.
class MatrixSink {
 public:
  virtual void Number(float value) = 0;
  virtual void Text(std::string_view text) = 0;
  virtual void Between(bool packed) = 0;  // between two elements of one row
  virtual void EndRow() = 0;

 protected:
  ~MatrixSink() = default;
};

// One array of a MAT READ, INPUT or PRINT list, with its new bounds if any.
class MatArray {
 public:
  explicit MatArray(NewBoundsPtr bounds) : bounds_(std::move(bounds)) {}
  virtual ~MatArray() = default;
  virtual bool IsString() const = 0;
  virtual ArrayShape& Shape() const = 0;
  // The longest text a text file may put in an element (StringVar::Room).
  virtual uint32_t Room() const { return kMaxStringLength; }
  // Element i in row-major order; both kinds take both, a wrong one is ignored.
  virtual void Set(uint32_t i, float value) = 0;
  virtual void Set(uint32_t i, std::string_view text) = 0;
  // Writes element i; an undefined number writes 0 and raises kUndefinedValue.
  virtual void Put(uint32_t i, MatrixSink& sink) const = 0;
  virtual size_t Size() const;
  void List(std::string& out) const;
  // Gives the array its new bounds, if any: 0, kArgOutOfRange for a bad bound, kDimensionMismatch
  // when they need more elements than the array was created with.
  ErrorCode Redimension();
  // Writes every row: the elements of the last bound, one call of EndRow
  // after each; a one-dimensional array is one row.
  void WriteRows(MatrixSink& sink, bool packed) const;

 protected:
  virtual void ListName(std::string& out) const = 0;

 private:
  NewBoundsPtr bounds_;
};
using MatArrayPtr = std::unique_ptr<MatArray>;
using MatArrayList = std::vector<MatArrayPtr>;

// An array name, numeric or string, and new bounds when allowed; null with
// the parse error set (22 when no array name is there).
MatArrayPtr ParseMatArray(StmtContext& prog, bool withBounds);
// Arrays separated by ",", each with optional new bounds; false with the parse error set.
bool ParseMatArrayList(StmtContext& prog, MatArrayList* out);

// Where MAT READ takes its values.
class ValueSource {
 public:
  // Stores the next value into element i; 0, or the error that ends the read.
  virtual ErrorCode ReadInto(MatArray& array, uint32_t i) = 0;

 protected:
  ~ValueSource() = default;
};

// Fills each array in turn from source, after giving it its new bounds; the
// first error stops the read with the elements read so far kept.
ErrorCode ReadArrays(const MatArrayList& arrays, ValueSource& source);

// MAT (keyword consumed) in mat_assign.cpp: the assignments, and READ, INPUT
// and PRINT from mat_io.cpp; MAT READ # and MAT PRINT # are data-file statements.
StatementPtr ParseMat(StmtContext& prog);
// After MAT: READ, INPUT and PRINT (keyword consumed) in mat_io.cpp.
StatementPtr ParseMatRead(StmtContext& prog);
StatementPtr ParseMatInput(StmtContext& prog);
StatementPtr ParseMatPrint(StmtContext& prog);
