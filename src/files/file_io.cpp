// Reading and writing files through their numbers: READ #, PRINT #, UPDATE #,
// ADVANCE, LOCK and UNLOCK, LINPUT # of text files, and the ON END # / OFF
// END # branch.
#include "base/convert.h"
#include "files/file_parsers.h"
#include "files/file_stmt.h"
#include "format/number_format.h"
#include "format/print_list.h"
#include "lex/parse_attempt.h"
#include "stmt/stmt_context.h"
#include "stmt/targets.h"

FileUnit* UnitOf(FileUnits& units, NumericExp& number) {
  float n = number.Evaluate();
  return g_err.run ? nullptr : units.OpenUnit(n);
}

void ListFileRecord(std::string& out, const char* keyword, const NumericExpPtr& number,
                    const NumericExpPtr& record) {
  out += keyword;
  out += " #";
  number->List(out);
  if (record) {
    out += ',';
    record->List(out);
  }
}

Statement* FileStmt::Finish(FileUnit* unit, FileUnit::Result result) {
  if (result == FileUnit::kEnd) return unit->endTarget ? unit->endTarget : Fail(err::kFileEnd);
  if (result == FileUnit::kFail || g_err.run) return Fail(g_err.run);
  return successor_;
}

FileUnit* FileStmt::Position(NumericExp* record, bool write, Statement** next) {
  FileUnit* unit = UnitOf(units_, *number_);
  if (!unit) {
    *next = Fail(g_err.run);
    return nullptr;
  }
  if (!record) return unit;
  float r = record->Evaluate();
  if (g_err.run) {
    *next = Fail(g_err.run);
    return nullptr;
  }
  if (FileUnit::Result result = unit->Seek(r); result != FileUnit::kOk) {
    *next = Finish(unit, result);
    return nullptr;
  }
  if (write && !unit->File().Writable()) {
    *next = Fail(err::kFileReadOnly);
    return nullptr;
  }
  return unit;
}

NumericExpPtr ParseFileNumber(StmtContext& p) {
  if (!p.Accept(tok::kHash)) {
    SetParseError(err::kMissingFileNumber);
    return nullptr;
  }
  ParseAttempt attempt(p);
  NumericExpPtr number = ParseNumericExp(p);
  if (!number) return attempt.Replace(err::kMissingFileNumber);
  return number;
}

bool ParseFileRecord(StmtContext& p, bool recordAllowed, NumericExpPtr* number,
                     NumericExpPtr* record) {
  if (!(*number = ParseFileNumber(p))) return false;
  if (!recordAllowed || !p.Accept(tok::kComma)) return true;
  ParseAttempt attempt(p);
  if (!(*record = ParseNumericExp(p))) {
    attempt.Replace(err::kMissingRecordNumber);
    return false;
  }
  return true;
}

bool ExpectSemicolon(StmtContext& p) {
  if (p.Accept(tok::kSemicolon)) return true;
  SetParseError(err::kMissingSemicolon);
  return false;
}

namespace {

// READ #n; list (serial), READ #n,r; list (bound to record r) and READ #n,r
// (moves to record r).
class ReadFileStmt final : public FileStmt {
 public:
  ReadFileStmt(FileUnits& units, NumericExpPtr number, NumericExpPtr record, TargetList targets)
      : FileStmt(units, std::move(number)),
        record_(std::move(record)),
        targets_(std::move(targets)) {}
  Statement* Execute() override {
    Statement* next;
    FileUnit* unit = Position(record_.get(), false, &next);
    if (!unit) return next;
    for (const auto& target : targets_) {
      FileUnit::Result r = unit->Read(*target, record_ != nullptr);
      if (r != FileUnit::kOk || g_err.run) return Finish(unit, r);
    }
    return successor_;
  }
  TokenCode Code() const override { return tok::kRead; }
  size_t Size() const override {
    return sizeof *this + BaseSize() + (record_ ? record_->Size() : 0) + TargetsSize(targets_);
  }
  void List(std::string& out) const override {
    ListFileRecord(out, "READ", number_, record_);
    if (targets_.empty()) return;
    out += ';';
    ListTargets(out, targets_);
  }

 private:
  NumericExpPtr record_;  // null for serial reading
  TargetList targets_;
};

// LINPUT #n; stringVar: the next whole line of a text file, without its line end.
class LinputFileStmt final : public FileStmt {
 public:
  LinputFileStmt(FileUnits& units, NumericExpPtr number, std::unique_ptr<Target> target)
      : FileStmt(units, std::move(number)), target_(std::move(target)) {}
  Statement* Execute() override {
    FileUnit* unit = UnitOf(units_, *number_);
    if (!unit) return Fail(g_err.run);
    return Finish(unit, unit->ReadLine(*target_));
  }
  TokenCode Code() const override { return tok::kLinput; }
  size_t Size() const override { return sizeof *this + BaseSize() + target_->Size(); }
  void List(std::string& out) const override {
    ListFileRecord(out, "LINPUT", number_, nullptr);
    out += ';';
    target_->List(out);
  }

 private:
  std::unique_ptr<Target> target_;
};

// One value of a PRINT # or UPDATE # list, or TAB, SPA or LIN of a PRINT #
// to a text file; END (none of them) writes an end-of-file mark. sep is the
// separator typed after it, 0 for none; one at the end leaves a text file's
// line open.
struct FileValue {
  NumericExpPtr number;
  StringExpPtr text;
  PrintSpecPtr function;
  char sep;
  size_t Size() const {
    return sizeof *this + (number     ? number->Size()
                           : text     ? text->Size()
                           : function ? function->Size()
                                      : 0);
  }
  void List(std::string& out) const {
    if (number)
      number->List(out);
    else if (text)
      text->List(out);
    else if (function)
      function->List(out);
    else
      out += "END";
    if (sep) out += sep;
  }
};
using FileValues = std::vector<FileValue>;

size_t ValuesSize(const FileValues& values) {
  size_t size = 0;
  for (const auto& v : values) size += v.Size();
  return size;
}

void ListValues(std::string& out, const FileValues& values) {
  if (values.empty()) return;
  out += ';';
  for (const auto& v : values) v.List(out);
}

// PRINT #n; list writes at the pointer, flowing into the next records;
// PRINT #n,r; list writes record r from its start, and PRINT #n,r alone
// empties it. Each PRINT leaves an end-of-record mark after its items.
class PrintFileStmt final : public FileStmt {
 public:
  PrintFileStmt(FileUnits& units, NumericExpPtr number, NumericExpPtr record, FileValues values)
      : FileStmt(units, std::move(number)),
        record_(std::move(record)),
        values_(std::move(values)) {}
  Statement* Execute() override {
    Statement* next;
    FileUnit* unit = Position(record_.get(), true, &next);
    if (!unit) return next;
    if (unit->IsText()) return PrintLine(*unit);
    bool bound = record_ != nullptr;
    FileUnit::Result result = FileUnit::kOk;
    bool endFile = false;
    for (FileValue& v : values_) {
      if (v.function) {
        result = FileUnit::kFail;
        SetRunError(err::kNotOnRecordFile);  // a record has no columns
      } else if (v.number) {
        float value = v.number->Evaluate();
        if (g_err.run) break;  // nothing of a failed value is written
        result = unit->WriteNumber(value, bound);
      } else if (v.text) {
        std::string_view text = v.text->Evaluate(work_);
        if (g_err.run) break;
        result = unit->WriteString(text, bound);
      } else {
        result = unit->WriteEndFile();
        endFile = true;
      }
      if (result != FileUnit::kOk) break;
    }
    // What was written is stored even when the list stopped early.
    ErrorCode pending = g_err.run;
    FileUnit::Result stored = unit->FinishWrite(!endFile);
    if (pending) SetRunError(pending);
    return Finish(unit, result != FileUnit::kOk ? result : stored);
  }
  TokenCode Code() const override { return tok::kPrint; }
  size_t Size() const override {
    return sizeof *this + BaseSize() + (record_ ? record_->Size() : 0) + ValuesSize(values_) +
           work_.Capacity();
  }
  void List(std::string& out) const override {
    ListFileRecord(out, "PRINT", number_, record_);
    ListValues(out, values_);
  }

 private:
  // The values as PRINT writes them, onto the text file's line: the same
  // number formats and zones, a line feed at the end unless a separator ends
  // the list. A value that fails stops the list before it is written.
  Statement* PrintLine(FileUnit& unit) {
    TextFile& out = unit.Text();
    if (!out.Writable()) return Fail(err::kFileReadOnly);
    out.StartWriting();
    char last = 0;
    for (FileValue& v : values_) {
      if (v.number) {
        float value = v.number->Evaluate();
        if (g_err.run) break;
        PrintNumber(out, value);
      } else if (v.text) {
        std::string_view text = v.text->Evaluate(work_);
        if (g_err.run) break;
        PrintText(out, text);
      } else if (v.function) {
        v.function->Execute(out);
        if (g_err.run) break;
      } else {
        last = 'E';  // END: the file ends here, with no line end after it
        break;
      }
      if (v.sep == ',') CommaZone(out);
      last = v.sep;
    }
    if (g_err.run) return Fail(g_err.run);
    if (!last) NewPrintLine(out);
    return Finish(&unit, unit.TextWritten());
  }
  NumericExpPtr record_;
  FileValues values_;
  StringValue work_;
};

// UPDATE #n; list: replaces the next items in place, each by a value of its type.
class UpdateFileStmt final : public FileStmt {
 public:
  UpdateFileStmt(FileUnits& units, NumericExpPtr number, FileValues values)
      : FileStmt(units, std::move(number)), values_(std::move(values)) {}
  Statement* Execute() override {
    FileUnit* unit = UnitOf(units_, *number_);
    if (!unit) return Fail(g_err.run);
    FileUnit::Result result = FileUnit::kOk;
    for (FileValue& v : values_) {
      if (v.number) {
        float value = v.number->Evaluate();
        if (g_err.run) break;
        result = unit->UpdateNumber(value);
      } else {
        std::string_view text = v.text->Evaluate(work_);
        if (g_err.run) break;
        result = unit->UpdateString(text);
      }
      if (result != FileUnit::kOk) break;
    }
    ErrorCode pending = g_err.run;
    FileUnit::Result stored = unit->FinishWrite(false);
    if (pending) SetRunError(pending);
    return Finish(unit, result != FileUnit::kOk ? result : stored);
  }
  TokenCode Code() const override { return tok::kUpdate; }
  size_t Size() const override {
    return sizeof *this + BaseSize() + ValuesSize(values_) + work_.Capacity();
  }
  void List(std::string& out) const override {
    ListFileRecord(out, "UPDATE", number_, nullptr);
    ListValues(out, values_);
  }

 private:
  FileValues values_;
  StringValue work_;
};

// ADVANCE #n; count, r: skips count items; r gets how many could not be
// skipped because the file ended (0 when all were).
class AdvanceStmt final : public FileStmt {
 public:
  AdvanceStmt(FileUnits& units, NumericExpPtr number, NumericExpPtr count,
              std::unique_ptr<NumericVar> left)
      : FileStmt(units, std::move(number)), count_(std::move(count)), left_(std::move(left)) {}
  Statement* Execute() override {
    FileUnit* unit = UnitOf(units_, *number_);
    if (!unit) return Fail(g_err.run);
    float count = count_->Evaluate();
    if (g_err.run) return Fail(g_err.run);
    int64_t n;
    if (!conv::RoundIn(count, 0, INT64_MAX, &n)) return Fail(err::kArgOutOfRange);
    uint64_t left = 0;
    if (unit->Skip(static_cast<uint64_t>(n), &left) != FileUnit::kOk) return Fail(g_err.run);
    left_->Assign(static_cast<float>(left));
    return g_err.run ? Fail(g_err.run) : successor_;
  }
  TokenCode Code() const override { return tok::kAdvance; }
  size_t Size() const override {
    return sizeof *this + BaseSize() + count_->Size() + left_->Size();
  }
  void List(std::string& out) const override {
    ListFileRecord(out, "ADVANCE", number_, nullptr);
    out += ';';
    count_->List(out);
    out += ',';
    left_->List(out);
  }

 private:
  NumericExpPtr count_;
  std::unique_ptr<NumericVar> left_;
};

// LOCK #n takes the file's lock, which every process on the machine sees,
// waiting while another program holds it (Ctrl+C breaks the wait); UNLOCK #n,
// CLOSE #n and the end of the run let it go. Units of one program on one file
// share it.
class LockStmt final : public FileStmt {
 public:
  LockStmt(FileUnits& units, NumericExpPtr number, TokenCode keyword)
      : FileStmt(units, std::move(number)), keyword_(keyword) {}
  Statement* Execute() override {
    FileUnit* unit = UnitOf(units_, *number_);
    if (!unit) return Fail(g_err.run);
    if (keyword_ == tok::kUnlock)
      return unit->Unlock() == FileUnit::kOk ? successor_ : Fail(g_err.run);
    // A broken wait goes on to the run's own break test.
    return unit->Lock() == FileUnit::kFail ? Fail(g_err.run) : successor_;
  }
  TokenCode Code() const override { return keyword_; }
  size_t Size() const override { return sizeof *this + BaseSize(); }
  void List(std::string& out) const override {
    ListFileRecord(out, keyword_ == tok::kLock ? "LOCK" : "UNLOCK", number_, nullptr);
  }

 private:
  TokenCode keyword_;
};

// ON END #n THEN target (also written IF END #n THEN target) and OFF END #n.
// The branch belongs to the file number: ASSIGN keeps it, the next run clears it.
class OnEndFileStmt final : public Statement {
 public:
  OnEndFileStmt(FileUnits& units, NumericExpPtr number, TargetRef target)
      : units_(units), number_(std::move(number)), target_(std::move(target)) {}
  Statement* Execute() override {
    float number = number_->Evaluate();
    FileUnit* unit = g_err.run ? nullptr : units_.Unit(number);
    if (!unit) return Fail(g_err.run);
    unit->endTarget = target_ ? target_.Landing() : nullptr;
    return successor_;
  }
  TokenCode Code() const override { return tok::kOn; }
  size_t Size() const override { return sizeof *this + number_->Size(); }
  void List(std::string& out) const override {
    out += target_ ? "ON END #" : "OFF END #";
    number_->List(out);
    if (!target_) return;
    out += " THEN ";
    target_.List(out);
  }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    if (target_) out.push_back(target_.get());
  }
  ErrorCode Resolve(StmtContext&) override {
    return !target_ || target_.Named() ? 0 : err::kUndefinedTarget;
  }

 private:
  FileUnits& units_;
  NumericExpPtr number_;
  TargetRef target_;  // empty for OFF END #
};

bool AtStatementEnd(StmtContext& p) {
  TokenCode next = p.Peek();
  return next == tok::kEndOfLine || next == tok::kComment;
}

// Values separated by "," or ";"; a numeric reading is tried before a string
// one, as PRINT items are. END may close a PRINT # list, and TAB, SPA and LIN
// stand in one.
bool ParseFileValues(StmtContext& p, bool isPrint, FileValues* values) {
  for (;;) {
    FileValue v{nullptr, nullptr, nullptr, 0};
    ParseAttempt attempt(p);
    if (isPrint && p.Accept(tok::kEnd)) {
      values->push_back(std::move(v));
      return true;  // the end-of-file mark is the last item
    }
    if (isPrint && (v.function = ParsePrintFunctionItem(p))) {
    } else if (g_err.parse) {
      return false;
    } else if (!(v.number = ParseNumericExp(p))) {
      ErrorCode numericError = g_err.parse;
      SetParseError(0);
      attempt.Rewind();
      if (!(v.text = ParseStringExp(p))) {
        attempt.Fail(numericError ? numericError : err::kBadExpression);
        return false;
      }
    }
    TokenCode sep = p.GetToken();
    bool more = sep == tok::kComma || sep == tok::kSemicolon;
    if (!more) p.BackUp();
    if (more) v.sep = sep == tok::kComma ? ',' : ';';
    values->push_back(std::move(v));
    if (!more || AtStatementEnd(p)) return true;
  }
}

StatementPtr ParseFileValuesStmt(StmtContext& p, bool isPrint) {
  NumericExpPtr number, record;
  if (!ParseFileRecord(p, isPrint, &number, &record)) return nullptr;
  FileValues values;
  if (!(isPrint && record && AtStatementEnd(p))) {
    if (!ExpectSemicolon(p) || !ParseFileValues(p, isPrint, &values)) return nullptr;
  }
  if (isPrint)
    return std::make_unique<PrintFileStmt>(*p.run.files, std::move(number), std::move(record),
                                           std::move(values));
  for (const FileValue& v : values)
    if (!v.number && !v.text) {
      SetParseError(err::kBadExpression);
      return nullptr;
    }
  return std::make_unique<UpdateFileStmt>(*p.run.files, std::move(number), std::move(values));
}

StatementPtr ParseLockWord(StmtContext& p, TokenCode keyword) {
  NumericExpPtr number = ParseFileNumber(p);
  if (!number) return nullptr;
  return std::make_unique<LockStmt>(*p.run.files, std::move(number), keyword);
}

}  // namespace

StatementPtr ParseReadFile(StmtContext& p) {
  NumericExpPtr number, record;
  if (!ParseFileRecord(p, true, &number, &record)) return nullptr;
  TargetList targets;
  if (!(record && AtStatementEnd(p))) {
    if (!ExpectSemicolon(p) || !ParseTargetList(p, &targets)) return nullptr;
    if (targets.empty()) {
      SetParseError(err::kBadTarget);
      return nullptr;
    }
  }
  return std::make_unique<ReadFileStmt>(*p.run.files, std::move(number), std::move(record),
                                        std::move(targets));
}

StatementPtr ParseLinputFile(StmtContext& p) {
  NumericExpPtr number = ParseFileNumber(p);
  if (!number || !ExpectSemicolon(p)) return nullptr;
  std::unique_ptr<StringVar> var = ParseStringVar(p);
  if (!var) {
    if (!g_err.parse) SetParseError(err::kBadStringVar);
    return nullptr;
  }
  return std::make_unique<LinputFileStmt>(*p.run.files, std::move(number),
                                          std::make_unique<StringTarget>(std::move(var)));
}

StatementPtr ParsePrintFile(StmtContext& p) { return ParseFileValuesStmt(p, true); }
StatementPtr ParseUpdateFile(StmtContext& p) { return ParseFileValuesStmt(p, false); }

StatementPtr ParseAdvance(StmtContext& p) {
  NumericExpPtr number = ParseFileNumber(p);
  if (!number || !ExpectSemicolon(p)) return nullptr;
  NumericExpPtr count = ParseNumericExp(p);
  if (!count) {
    if (!g_err.parse) SetParseError(err::kBadNumericExp);
    return nullptr;
  }
  if (!p.Accept(tok::kComma)) {
    SetParseError(err::kMissingDelimiter);
    return nullptr;
  }
  auto left = ParseNumericVar(p);
  if (!left) {
    if (!g_err.parse) SetParseError(err::kBadNumericVar);
    return nullptr;
  }
  return std::make_unique<AdvanceStmt>(*p.run.files, std::move(number), std::move(count),
                                       std::move(left));
}

StatementPtr ParseLock(StmtContext& p) { return ParseLockWord(p, tok::kLock); }
StatementPtr ParseUnlock(StmtContext& p) { return ParseLockWord(p, tok::kUnlock); }

StatementPtr ParseOnEndFile(StmtContext& p) {
  NumericExpPtr number = ParseFileNumber(p);
  if (!number) return nullptr;
  TargetRef target = ParseThenTarget(p);
  if (!target) return nullptr;
  return std::make_unique<OnEndFileStmt>(*p.run.files, std::move(number), std::move(target));
}

StatementPtr ParseOffEndFile(StmtContext& p) {
  NumericExpPtr number = ParseFileNumber(p);
  if (!number) return nullptr;
  return std::make_unique<OnEndFileStmt>(*p.run.files, std::move(number), TargetRef());
}
