// MAT READ # and MAT PRINT #: whole arrays from and to a data file, element
// by element in row-major order, serially or bound to one record as READ #
// and PRINT # move; from and to a text file as READ # reads items, each row
// of a MAT PRINT # a line.
#include "files/file_parsers.h"
#include "files/file_stmt.h"
#include "format/number_format.h"
#include "lex/parse_attempt.h"
#include "matrix/mat.h"
#include "stmt/stmt_context.h"
#include "stmt/targets.h"

namespace {

// One element of an array, as the target of a file read.
class ElementTarget final : public Target {
 public:
  ElementTarget(MatArray& array, uint32_t i) : array_(array), i_(i) {}
  bool IsString() const override { return array_.IsString(); }
  uint32_t Room() const override { return array_.Room(); }
  void Assign(float value) override { array_.Set(i_, value); }
  void Assign(std::string_view text) override { array_.Set(i_, text); }
  size_t Size() const override { return sizeof *this; }
  void List(std::string&) const override {}  // never listed: it lives for one read

 private:
  MatArray& array_;
  uint32_t i_;
};

// The items of a file, read as READ # reads them; result keeps how the read ended.
class FileSource final : public ValueSource {
 public:
  FileSource(FileUnit& unit, bool bound) : unit_(unit), bound_(bound) {}
  ErrorCode ReadInto(MatArray& array, uint32_t i) override {
    ElementTarget target(array, i);
    result = unit_.Read(target, bound_);
    if (result == FileUnit::kOk) return g_err.run;
    return result == FileUnit::kEnd ? err::kFileEnd : g_err.run ? g_err.run : err::kFileError;
  }

  FileUnit::Result result = FileUnit::kOk;

 private:
  FileUnit& unit_;
  bool bound_;
};

// The elements written as PRINT # writes values; the first failure stops the writing.
class FileSink final : public MatrixSink {
 public:
  FileSink(FileUnit& unit, bool bound) : unit_(unit), bound_(bound) {}
  void Number(float value) override {
    if (result == FileUnit::kOk && !g_err.run) result = unit_.WriteNumber(value, bound_);
  }
  void Text(std::string_view text) override {
    if (result == FileUnit::kOk && !g_err.run) result = unit_.WriteString(text, bound_);
  }
  void Between(bool) override {}
  void EndRow() override {}

  FileUnit::Result result = FileUnit::kOk;

 private:
  FileUnit& unit_;
  bool bound_;
};

// The elements as a text file's lines that READ # reads back: a row to a
// line, its elements joined by commas, numbers as PRINT writes them without
// their blanks, strings quoted (a quote doubled) when they would read otherwise.
class TextRowsSink final : public MatrixSink {
 public:
  explicit TextRowsSink(TextFile& out) : out_(out) {}
  void Number(float value) override {
    char buffer[kNumberBufferSize];
    int reserve;
    std::string_view text(buffer, FormatNumber(value, buffer, &reserve));
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    out_.Print(text);
  }
  void Text(std::string_view text) override {
    TextItem item;
    if (CutTextItem(text, &item, &scratch_) && item.endsLine && !item.isNumber &&
        item.text.size() == text.size() && text.front() != '"') {
      out_.Print(text);
      return;
    }
    out_.Print('"');
    for (size_t quote; (quote = text.find('"')) != std::string_view::npos;) {
      out_.Print(text.substr(0, quote + 1));
      out_.Print('"');
      text.remove_prefix(quote + 1);
    }
    out_.Print(text);
    out_.Print('"');
  }
  void Between(bool) override { out_.Print(','); }
  void EndRow() override { out_.Print('\n'); }

 private:
  TextFile& out_;
  std::string scratch_;
};

size_t ArraysSize(const MatArrayList& arrays) {
  size_t size = 0;
  for (const auto& a : arrays) size += a->Size();
  return size;
}

void ListFileArrays(std::string& out, const char* keyword, const NumericExpPtr& number,
                    const NumericExpPtr& record, const MatArrayList& arrays) {
  ListFileRecord(out, keyword, number, record);
  out += ';';
  for (size_t i = 0; i < arrays.size(); ++i) {
    if (i) out += ',';
    arrays[i]->List(out);
  }
}

// MAT READ #n[,r]; arrays: new bounds first, as MAT READ gives them.
class MatReadFileStmt final : public FileStmt {
 public:
  MatReadFileStmt(FileUnits& units, NumericExpPtr number, NumericExpPtr record, MatArrayList arrays)
      : FileStmt(units, std::move(number)),
        record_(std::move(record)),
        arrays_(std::move(arrays)) {}
  Statement* Execute() override {
    Statement* next;
    FileUnit* unit = Position(record_.get(), false, &next);
    if (!unit) return next;
    FileSource source(*unit, record_ != nullptr);
    ErrorCode code = ReadArrays(arrays_, source);
    if (source.result != FileUnit::kOk) return Finish(unit, source.result);
    return code ? Fail(code) : successor_;
  }
  TokenCode Code() const override { return tok::kMat; }
  size_t Size() const override {
    return sizeof *this + BaseSize() + (record_ ? record_->Size() : 0) + ArraysSize(arrays_);
  }
  void List(std::string& out) const override {
    ListFileArrays(out, "MAT READ", number_, record_, arrays_);
  }

 private:
  NumericExpPtr record_;  // null for serial reading
  MatArrayList arrays_;
};

// MAT PRINT #n[,r]; arrays: one PRINT # of all their elements, ended by an
// end-of-record mark.
class MatPrintFileStmt final : public FileStmt {
 public:
  MatPrintFileStmt(FileUnits& units, NumericExpPtr number, NumericExpPtr record,
                   MatArrayList arrays)
      : FileStmt(units, std::move(number)),
        record_(std::move(record)),
        arrays_(std::move(arrays)) {}
  Statement* Execute() override {
    Statement* next;
    FileUnit* unit = Position(record_.get(), true, &next);
    if (!unit) return next;
    if (unit->IsText()) return PrintLines(*unit);
    bool bound = record_ != nullptr;
    FileSink sink(*unit, bound);
    for (const auto& array : arrays_) array->WriteRows(sink, true);
    // What was written is stored even when the writing stopped early.
    ErrorCode pending = g_err.run;
    FileUnit::Result stored = unit->FinishWrite(true);
    if (pending) SetRunError(pending);
    return Finish(unit, sink.result != FileUnit::kOk ? sink.result : stored);
  }
  TokenCode Code() const override { return tok::kMat; }
  size_t Size() const override {
    return sizeof *this + BaseSize() + (record_ ? record_->Size() : 0) + ArraysSize(arrays_);
  }
  void List(std::string& out) const override {
    ListFileArrays(out, "MAT PRINT", number_, record_, arrays_);
  }

 private:
  Statement* PrintLines(FileUnit& unit) {
    if (!unit.Text().Writable()) return Fail(err::kFileReadOnly);
    unit.Text().StartWriting();
    TextRowsSink sink(unit.Text());
    // An undefined element is written as 0 and stops the run after the list.
    for (const auto& array : arrays_) array->WriteRows(sink, true);
    ErrorCode pending = g_err.run;
    FileUnit::Result written = unit.TextWritten();
    if (pending) return Fail(pending);
    return Finish(&unit, written);
  }

  NumericExpPtr record_;
  MatArrayList arrays_;
};

}  // namespace

StatementPtr ParseMatReadFile(StmtContext& p) {
  NumericExpPtr number, record;
  if (!ParseFileRecord(p, true, &number, &record) || !ExpectSemicolon(p)) return nullptr;
  MatArrayList arrays;
  if (!ParseMatArrayList(p, &arrays)) return nullptr;
  return std::make_unique<MatReadFileStmt>(*p.run.files, std::move(number), std::move(record),
                                           std::move(arrays));
}

StatementPtr ParseMatPrintFile(StmtContext& p) {
  NumericExpPtr number, record;
  if (!ParseFileRecord(p, true, &number, &record) || !ExpectSemicolon(p)) return nullptr;
  // "," or ";" between the arrays: a file keeps no layout, so both list as ",".
  MatArrayList arrays;
  do {
    MatArrayPtr array = ParseMatArray(p, false);
    if (!array) return nullptr;
    arrays.push_back(std::move(array));
  } while (p.Accept(tok::kComma) || p.Accept(tok::kSemicolon));
  return std::make_unique<MatPrintFileStmt>(*p.run.files, std::move(number), std::move(record),
                                            std::move(arrays));
}
