// MAT READ, MAT INPUT and MAT PRINT: whole arrays from DATA, from typed lines
// and onto the console, element by element in row-major order.
#include "base/convert.h"
#include "console/console.h"
#include "format/number_format.h"
#include "format/print_list.h"
#include "lex/parse_attempt.h"
#include "matrix/mat.h"
#include "stmt/data_reader.h"
#include "stmt/input_loop.h"
#include "stmt/stmt_context.h"

// --- New bounds.

bool NewBounds::Parse(StmtContext& p, NewBoundsPtr* out) {
  out->reset();
  ParseAttempt attempt(p);
  TokenCode open = p.GetToken();
  if (open != tok::kLParen && open != tok::kLBracket) {
    attempt.Rewind();
    return true;
  }
  auto bounds = std::make_unique<NewBounds>();
  bool ok = true;
  do {
    NumericExpPtr exp = bounds->count_ < kMax ? ParseNumericExp(p) : nullptr;
    ok = exp != nullptr;
    if (ok) bounds->exps_[bounds->count_++] = std::move(exp);
  } while (ok && p.Accept(tok::kComma));
  // Every failure of the list reads as DIM's does.
  if (!ok || !(p.Accept(tok::kRParen) || p.Accept(tok::kRBracket))) {
    attempt.Replace(err::kBadParamList);
    return false;
  }
  *out = std::move(bounds);
  return true;
}

size_t NewBounds::Size() const {
  size_t size = sizeof *this;
  for (size_t i = 0; i < count_; ++i) size += exps_[i]->Size();
  return size;
}

void NewBounds::List(std::string& out) const {
  out += '(';
  for (size_t i = 0; i < count_; ++i) {
    if (i) out += ',';
    exps_[i]->List(out);
  }
  out += ')';
}

ErrorCode NewBounds::Evaluate(uint32_t (&bounds)[kMax], size_t* count) const {
  for (size_t i = 0; i < count_; ++i) {
    float value = exps_[i]->Evaluate();
    if (g_err.run) return g_err.run;
    int32_t n = conv::RoundToInt32(value);
    if (n < 1 || n > static_cast<int32_t>(kMaxElements)) return err::kArgOutOfRange;
    bounds[i] = static_cast<uint32_t>(n);
  }
  *count = count_;
  return 0;
}

// --- Arrays of the lists.

size_t MatArray::Size() const { return sizeof *this + (bounds_ ? bounds_->Size() : 0); }

void MatArray::List(std::string& out) const {
  ListName(out);
  if (bounds_) bounds_->List(out);
}

ErrorCode MatArray::Redimension() {
  if (!bounds_) return 0;
  uint32_t bounds[NewBounds::kMax];
  size_t count;
  if (ErrorCode code = bounds_->Evaluate(bounds, &count)) return code;
  return Shape().Reshape({bounds, count});
}

void MatArray::WriteRows(MatrixSink& sink, bool packed) const {
  const ArrayShape& shape = Shape();
  uint32_t rowLength = shape.dims.Bound(shape.dims.Count() - 1);
  for (uint32_t start = 0; start < shape.count; start += rowLength) {
    for (uint32_t j = 0; j < rowLength; ++j) {
      if (j) sink.Between(packed);
      Put(start + j, sink);
    }
    sink.EndRow();
  }
}

namespace {

class NumericMatArray final : public MatArray {
 public:
  NumericMatArray(std::unique_ptr<NumericMatrixVar> var, NewBoundsPtr bounds)
      : MatArray(std::move(bounds)), var_(std::move(var)) {}
  bool IsString() const override { return false; }
  ArrayShape& Shape() const override { return var_->Data(); }
  void Set(uint32_t i, float value) override { var_->Data().elements[i] = value; }
  void Set(uint32_t, std::string_view) override {}
  void Put(uint32_t i, MatrixSink& sink) const override {
    sink.Number(ReadValue(var_->Data().elements[i]));
  }
  size_t Size() const override { return MatArray::Size() + sizeof *var_; }

 protected:
  void ListName(std::string& out) const override { var_->List(out); }

 private:
  std::unique_ptr<NumericMatrixVar> var_;
};

class StringMatArray final : public MatArray {
 public:
  StringMatArray(std::unique_ptr<StringMatrixVar> var, NewBoundsPtr bounds)
      : MatArray(std::move(bounds)), var_(std::move(var)) {}
  bool IsString() const override { return true; }
  ArrayShape& Shape() const override { return var_->Data(); }
  uint32_t Room() const override {
    return var_->Data().declared ? var_->Data().declared : kMaxStringLength;
  }
  void Set(uint32_t, float) override {}
  void Set(uint32_t i, std::string_view text) override { var_->Data().elements[i].Assign(text); }
  void Put(uint32_t i, MatrixSink& sink) const override {
    sink.Text(var_->Data().elements[i].View());
  }
  size_t Size() const override { return MatArray::Size() + sizeof *var_; }

 protected:
  void ListName(std::string& out) const override { var_->List(out); }

 private:
  std::unique_ptr<StringMatrixVar> var_;
};

size_t ArraysSize(const MatArrayList& arrays) {
  size_t size = 0;
  for (const auto& a : arrays) size += a->Size();
  return size;
}

void ListArrays(std::string& out, const MatArrayList& arrays) {
  for (size_t i = 0; i < arrays.size(); ++i) {
    if (i) out += ',';
    arrays[i]->List(out);
  }
}

// --- MAT READ.

// READ's DATA items, checked against the element's kind as READ checks them.
class DataSource final : public ValueSource {
 public:
  explicit DataSource(DataReader& reader) : reader_(reader) {}
  ErrorCode ReadInto(MatArray& array, uint32_t i) override {
    const DataItem* item = TakeDataItem(reader_);
    if (!item) return err::kOutOfData;
    if (item->type == tok::kNumVar) {
      if (array.IsString()) return err::kDataWrongType;
      array.Set(i, item->number);
    } else if (item->type == tok::kStrVar) {
      if (!array.IsString()) return err::kDataWrongType;
      array.Set(i, std::string_view(item->text));
    } else {
      return err::kUnknownDataType;
    }
    return 0;
  }

 private:
  DataReader& reader_;
};

class MatReadStmt final : public Statement {
 public:
  MatReadStmt(DataReader& reader, MatArrayList arrays)
      : reader_(reader), arrays_(std::move(arrays)) {}
  Statement* Execute() override {
    DataSource source(reader_);
    ErrorCode code = ReadArrays(arrays_, source);
    if (code == err::kOutOfData && reader_.endTarget) return reader_.endTarget;
    return code ? Fail(code) : successor_;
  }
  TokenCode Code() const override { return tok::kMat; }
  size_t Size() const override { return sizeof *this + ArraysSize(arrays_); }
  void List(std::string& out) const override {
    out += "MAT READ ";
    ListArrays(out, arrays_);
  }

 private:
  DataReader& reader_;
  MatArrayList arrays_;
};

// --- MAT INPUT.

// The elements of the arrays, one after the other, as the dialogue's slots.
class ElementSlots final : public InputSlots {
 public:
  explicit ElementSlots(const MatArrayList& arrays) : arrays_(arrays) {
    for (const auto& a : arrays_) count_ += a->Shape().count;
  }
  size_t Count() const override { return count_; }
  bool IsString(size_t i) const override { return Locate(&i).IsString(); }
  void Assign(size_t i, float value) override {
    MatArray& array = Locate(&i);
    array.Set(static_cast<uint32_t>(i), value);
  }
  void Assign(size_t i, std::string_view text) override {
    MatArray& array = Locate(&i);
    array.Set(static_cast<uint32_t>(i), text);
  }

 private:
  // The array that slot *i falls in; *i becomes the element's index in it.
  MatArray& Locate(size_t* i) const {
    for (const auto& a : arrays_) {
      if (*i < a->Shape().count) return *a;
      *i -= a->Shape().count;
    }
    return *arrays_.back();  // never reached: the dialogue asks below Count()
  }

  const MatArrayList& arrays_;
  size_t count_ = 0;
};

class MatInputStmt final : public Statement {
 public:
  MatInputStmt(RunState& run, MatArrayList arrays) : run_(run), arrays_(std::move(arrays)) {}
  Statement* Execute() override {
    for (const auto& array : arrays_)
      if (ErrorCode code = array->Redimension()) return Fail(code);
    ElementSlots slots(arrays_);
    RunInput(*run_.console, "?", slots, Location());
    return successor_;
  }
  TokenCode Code() const override { return tok::kMat; }
  size_t Size() const override { return sizeof *this + ArraysSize(arrays_); }
  void List(std::string& out) const override {
    out += "MAT INPUT ";
    ListArrays(out, arrays_);
  }

 private:
  RunState& run_;  // asks and reads on its console
  MatArrayList arrays_;
};

// --- MAT PRINT.

// Rows printed as PRINT prints: the elements in its zones or packed as it
// packs them, each row ending its line and followed by a blank line.
class PrintedRows final : public MatrixSink {
 public:
  explicit PrintedRows(PrintSink& out) : out_(out) {}
  void Number(float value) override { PrintNumber(out_, value); }
  void Text(std::string_view text) override { PrintText(out_, text); }
  void Between(bool packed) override {
    if (!packed) CommaZone(out_);
  }
  void EndRow() override {
    NewPrintLine(out_);
    NewPrintLine(out_);
  }

 private:
  PrintSink& out_;
};

class MatPrintStmt final : public Statement {
 public:
  // Each array with the separator written after it: ";" packs its rows.
  struct Item {
    MatArrayPtr array;
    TokenCode separator;  // tok::kComma, tok::kSemicolon or 0 after the last
  };
  MatPrintStmt(RunState& run, std::vector<Item> items) : run_(run), items_(std::move(items)) {}
  Statement* Execute() override {
    PrintedRows sink(*run_.console);
    // An undefined element prints as 0; the statement stops after the whole list.
    for (const Item& item : items_) item.array->WriteRows(sink, item.separator == tok::kSemicolon);
    return successor_;
  }
  TokenCode Code() const override { return tok::kMat; }
  size_t Size() const override {
    size_t size = sizeof *this;
    for (const Item& item : items_) size += item.array->Size();
    return size;
  }
  void List(std::string& out) const override {
    out += "MAT PRINT ";
    for (const Item& item : items_) {
      item.array->List(out);
      if (item.separator) out += item.separator == tok::kComma ? ',' : ';';
    }
  }

 private:
  RunState& run_;  // prints on its console
  std::vector<Item> items_;
};

bool AtStatementEnd(StmtContext& p) {
  TokenCode next = p.Peek();
  return next == tok::kEndOfLine || next == tok::kComment;
}

}  // namespace

MatArrayPtr ParseMatArray(StmtContext& p, bool withBounds) {
  ParseAttempt attempt(p);
  NewBoundsPtr bounds;
  if (auto numeric = ParseNumericMatrix(p)) {
    if (withBounds && !NewBounds::Parse(p, &bounds)) return attempt.Fail();
    return std::make_unique<NumericMatArray>(std::move(numeric), std::move(bounds));
  }
  if (auto text = ParseStringMatrix(p)) {
    if (withBounds && !NewBounds::Parse(p, &bounds)) return attempt.Fail();
    return std::make_unique<StringMatArray>(std::move(text), std::move(bounds));
  }
  SetParseError(err::kBadMatrixVar);
  return nullptr;
}

bool ParseMatArrayList(StmtContext& p, MatArrayList* out) {
  do {
    MatArrayPtr array = ParseMatArray(p, true);
    if (!array) return false;
    out->push_back(std::move(array));
  } while (p.Accept(tok::kComma));
  return true;
}

ErrorCode ReadArrays(const MatArrayList& arrays, ValueSource& source) {
  for (const auto& array : arrays) {
    if (ErrorCode code = array->Redimension()) return code;
    uint32_t count = array->Shape().count;
    for (uint32_t i = 0; i < count; ++i)
      if (ErrorCode code = source.ReadInto(*array, i)) return code;
  }
  return 0;
}

StatementPtr ParseMatRead(StmtContext& p) {
  MatArrayList arrays;
  if (!ParseMatArrayList(p, &arrays)) return nullptr;
  return std::make_unique<MatReadStmt>(p.run.data, std::move(arrays));
}

StatementPtr ParseMatInput(StmtContext& p) {
  MatArrayList arrays;
  if (!ParseMatArrayList(p, &arrays)) return nullptr;
  return std::make_unique<MatInputStmt>(p.run, std::move(arrays));
}

StatementPtr ParseMatPrint(StmtContext& p) {
  std::vector<MatPrintStmt::Item> items;
  do {
    MatArrayPtr array = ParseMatArray(p, false);
    if (!array) return nullptr;
    TokenCode separator = 0;
    if (p.Accept(tok::kComma))
      separator = tok::kComma;
    else if (p.Accept(tok::kSemicolon))
      separator = tok::kSemicolon;
    items.push_back({std::move(array), separator});
    if (!separator) break;
  } while (!AtStatementEnd(p));
  return std::make_unique<MatPrintStmt>(p.run, std::move(items));
}
