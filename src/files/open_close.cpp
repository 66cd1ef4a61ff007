// The statements that name, open, create and remove files: FILES, ASSIGN,
// CREATE, PURGE and CLOSE #. A file that is no data file opens as a text file.
// File names are host paths, relative to the working folder, or in a library
// folder after "$" or "*", confined to the sandbox when there is one.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "expr/variables.h"
#include "files/data_journal.h"
#include "files/file_parsers.h"
#include "files/file_units.h"
#include "stmt/stmt_context.h"

namespace {

// The status values ASSIGN stores in its return variable.
float AssignStatus(OpenStatus status) {
  switch (status) {
    case OpenStatus::kReadWrite:
      return 0;
    case OpenStatus::kReadOnly:
      return 1;
    case OpenStatus::kMissing:
      return 2;
    case OpenStatus::kText:
    case OpenStatus::kNotData:
      return 3;
    case OpenStatus::kDamaged:
      return 4;
    case OpenStatus::kTextReadOnly:
      return 6;
    case OpenStatus::kFailed:
    case OpenStatus::kBadName:
    case OpenStatus::kOutside:
    case OpenStatus::kAmbiguous:
      break;
  }
  return 5;
}

// The error of a name that no status stands for: one no file can have, or one
// outside the sandbox. Raised rather than put in a status, so it is seen.
ErrorCode NameError(OpenStatus status) {
  if (status == OpenStatus::kBadName) return err::kBadFileName;
  if (status == OpenStatus::kOutside) return err::kOutsideSandbox;
  if (status == OpenStatus::kAmbiguous) return err::kAmbiguousName;
  return 0;
}

// Raises code where the name's note, if any, goes with it into the report.
ErrorCode NoteName(ErrorCode code, const std::string& note) {
  SetErrorNote(code, note);
  return code;
}

// The error of a FILES name that does not open.
ErrorCode OpenError(OpenStatus status) {
  switch (status) {
    case OpenStatus::kReadWrite:
    case OpenStatus::kReadOnly:
    case OpenStatus::kText:
    case OpenStatus::kTextReadOnly:
      return 0;
    case OpenStatus::kMissing:
      return err::kFileNotFound;
    case OpenStatus::kNotData:
      return err::kNotOnAsciiFile;
    case OpenStatus::kDamaged:
      return err::kFileDamaged;
    case OpenStatus::kBadName:
      return err::kBadFileName;
    case OpenStatus::kOutside:
      return err::kOutsideSandbox;
    case OpenStatus::kAmbiguous:
      return err::kAmbiguousName;
    case OpenStatus::kFailed:
      break;
  }
  return err::kFileError;
}

// A name of a FILES list: "*" keeps a number free for ASSIGN.
struct FilesName {
  std::string path;
  bool quoted;
};

// Declares file numbers in order, continuing from the FILES before it; the
// link pass opens the files, so a missing one stops the run before it starts.
class FilesStmt final : public Statement {
 public:
  FilesStmt(FileUnits& units, std::vector<FilesName> names)
      : units_(units), names_(std::move(names)) {}
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kFiles; }
  size_t Size() const override {
    size_t size = sizeof *this;
    for (const auto& n : names_) size += sizeof n + n.path.size();
    return size;
  }
  void List(std::string& out) const override {
    out += "FILES ";
    for (size_t i = 0; i < names_.size(); ++i) {
      if (i) out += ',';
      if (names_[i].quoted)
        ListStringLiteral(out, names_[i].path);
      else
        out += names_[i].path;
    }
  }
  bool IsExecutable() const override { return false; }
  ErrorCode Check(StmtContext&) override {
    for (const FilesName& name : names_) {
      if (units_.declared >= FileUnits::kUnits) return Raise(err::kBadFileNumber, Location());
      FileUnit& unit = units_[units_.declared++];
      if (!name.quoted && name.path == "*") continue;
      std::string note;
      if (ErrorCode code = OpenError(unit.Open(name.path, false, FileUnit::Ask::kAny, &note)))
        return Raise(NoteName(code, note), Location());
    }
    return 0;
  }

 private:
  FileUnits& units_;
  std::vector<FilesName> names_;
};

// What an ASSIGN asks for: RR reading only; TEXT a text file, made when
// missing; APPEND one written at its end. WR, NR and anything else ask nothing more.
enum class Restriction { kNone, kReadOnly, kText, kAppend };

bool SameWord(std::string_view text, std::string_view word) {
  if (text.size() != word.size()) return false;
  for (size_t i = 0; i < word.size(); ++i)
    if ((text[i] | 0x20) != (word[i] | 0x20)) return false;
  return true;
}

// The restriction a text names, blanks around it and case ignored. Any other
// text (a lock word of old listings) opens the file without restriction.
Restriction RestrictionOf(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  if (SameWord(text, "RR")) return Restriction::kReadOnly;
  if (SameWord(text, "TEXT")) return Restriction::kText;
  if (SameWord(text, "APPEND")) return Restriction::kAppend;
  return Restriction::kNone;
}

// ASSIGN name, n, r [, restriction]: opens a file as number n, closing what n
// had. "*" as the name only closes. The restriction is RR, WR or NR as a word,
// or any string expression: RR opens for reading only; "TEXT" and "APPEND" a
// text file; WR, NR and any other text read and write, programs sharing a
// data file through LOCK.
class AssignStmt final : public Statement {
 public:
  AssignStmt(FileUnits& units, StringExpPtr name, NumericExpPtr number,
             std::unique_ptr<NumericVar> status, TokenCode restriction, StringExpPtr restrictionExp)
      : units_(units),
        name_(std::move(name)),
        number_(std::move(number)),
        status_(std::move(status)),
        restriction_(restriction),
        restrictionExp_(std::move(restrictionExp)) {}
  Statement* Execute() override {
    std::string_view name = name_ ? name_->Evaluate(work_) : "*";
    if (g_err.run) return Fail(g_err.run);
    std::string path(name);
    float number = number_->Evaluate();
    FileUnit* unit = g_err.run ? nullptr : units_.Unit(number);
    if (!unit) return Fail(g_err.run);
    Restriction restriction =
        restriction_ == tok::kRr ? Restriction::kReadOnly : Restriction::kNone;
    if (restrictionExp_) {
      restriction = RestrictionOf(restrictionExp_->Evaluate(restrictionWork_));
      if (g_err.run) return Fail(g_err.run);
    }
    // Text the file number still held is written first: a failure stops here.
    if (ErrorCode code = unit->Close()) return Fail(code);
    float status = 0;
    if (path != "*") {
      std::string note;
      FileUnit::Ask ask = restriction == Restriction::kText     ? FileUnit::Ask::kText
                          : restriction == Restriction::kAppend ? FileUnit::Ask::kAppend
                                                                : FileUnit::Ask::kAny;
      OpenStatus opened = unit->Open(path, restriction == Restriction::kReadOnly, ask, &note);
      if (ErrorCode code = NameError(opened)) return Fail(NoteName(code, note));
      status = AssignStatus(opened);
    }
    status_->Assign(status);
    return g_err.run ? Fail(g_err.run) : successor_;
  }
  TokenCode Code() const override { return tok::kAssign; }
  size_t Size() const override {
    return sizeof *this + (name_ ? name_->Size() : 0) + number_->Size() + status_->Size() +
           (restrictionExp_ ? restrictionExp_->Size() : 0);
  }
  void List(std::string& out) const override {
    out += "ASSIGN ";
    if (name_)
      name_->List(out);
    else
      out += '*';
    out += ',';
    number_->List(out);
    out += ',';
    status_->List(out);
    if (restriction_)
      out += restriction_ == tok::kRr ? ",RR" : restriction_ == tok::kWr ? ",WR" : ",NR";
    if (restrictionExp_) {
      out += ',';
      restrictionExp_->List(out);
    }
  }

 private:
  FileUnits& units_;
  StringExpPtr name_;  // null for "*"
  NumericExpPtr number_;
  std::unique_ptr<NumericVar> status_;
  TokenCode restriction_;        // written as a word: tok::kRr, kWr, kNr; else 0
  StringExpPtr restrictionExp_;  // written as a string expression, or null
  StringValue work_, restrictionWork_;
};

// CREATE r, name, records [, words]: a new file of empty records. r gets 0
// (created), 1 (a file of that name exists, and is kept), 2 (sizes out of
// range) or 3 (the file cannot be made, or the disk has no room for it).
class CreateStmt final : public Statement {
 public:
  CreateStmt(std::unique_ptr<NumericVar> status, StringExpPtr name, NumericExpPtr records,
             NumericExpPtr words)
      : status_(std::move(status)),
        name_(std::move(name)),
        records_(std::move(records)),
        words_(std::move(words)) {}
  Statement* Execute() override {
    std::string path(name_->Evaluate(work_));
    float records = records_->Evaluate();
    float words = words_ ? words_->Evaluate() : static_cast<float>(data_file::kDefaultWords);
    if (g_err.run) return Fail(g_err.run);
    CreateStatus created = DataFile::Create(path, records, words);
    if (created == CreateStatus::kBadName) return Fail(err::kBadFileName);
    if (created == CreateStatus::kOutside) return Fail(err::kOutsideSandbox);
    status_->Assign(static_cast<float>(static_cast<int>(created)));
    return g_err.run ? Fail(g_err.run) : successor_;
  }
  TokenCode Code() const override { return tok::kCreate; }
  size_t Size() const override {
    return sizeof *this + status_->Size() + name_->Size() + records_->Size() +
           (words_ ? words_->Size() : 0);
  }
  void List(std::string& out) const override {
    out += "CREATE ";
    status_->List(out);
    out += ',';
    name_->List(out);
    out += ',';
    records_->List(out);
    if (words_) {
      out += ',';
      words_->List(out);
    }
  }

 private:
  std::unique_ptr<NumericVar> status_;
  StringExpPtr name_;
  NumericExpPtr records_;
  NumericExpPtr words_;  // null: the default record size
  StringValue work_;
};

// PURGE r, name: removes a data file. Only a file that begins as a data file,
// or an empty one, is removed, so a mistyped name never deletes a program. r
// gets 0 (removed), 1 (no such file), 2 (not a data file), 3 (cannot be
// removed) or 4 (open in one of the program's file numbers).
class PurgeStmt final : public Statement {
 public:
  PurgeStmt(FileUnits& units, std::unique_ptr<NumericVar> status, StringExpPtr name)
      : units_(units), status_(std::move(status)), name_(std::move(name)) {}
  Statement* Execute() override {
    std::string_view name = name_->Evaluate(work_);
    if (g_err.run) return Fail(g_err.run);
    std::string path, note;
    host::Place place;
    int error = host::FindFile(name, host::FileKind::kData, &path, &note);
    if (!error) error = place.Resolve(path);
    if (ErrorCode code = NameError(NameStatus(error))) return Fail(NoteName(code, note));
    status_->Assign(error ? (NameStatus(error) == OpenStatus::kMissing ? 1.0f : 3.0f)
                          : Purge(place));
    return g_err.run ? Fail(g_err.run) : successor_;
  }
  TokenCode Code() const override { return tok::kPurge; }
  size_t Size() const override { return sizeof *this + status_->Size() + name_->Size(); }
  void List(std::string& out) const override {
    out += "PURGE ";
    status_->List(out);
    out += ',';
    name_->List(out);
  }

 private:
  float Purge(const host::Place& place) const {
    int fd = place.Open(O_RDONLY | O_NONBLOCK);
    if (fd < 0) return errno == ENOENT || errno == ENOTDIR ? 1 : 3;
    uint32_t words, records;
    struct stat st;
    OpenStatus kind = fstat(fd, &st) == 0 && S_ISREG(st.st_mode)
                          ? ReadDataHeader(fd, &words, &records)
                          : OpenStatus::kFailed;
    close(fd);
    // An empty file holds nothing to lose: what an interrupted CREATE of old left.
    if (kind == OpenStatus::kNotData && st.st_size != 0) return 2;
    if (kind == OpenStatus::kFailed) return 3;
    if (units_.Holds(st.st_dev, st.st_ino)) return 4;
    if (place.Remove() != 0) return 3;
    place.Sibling(data_journal::kSuffix).Remove();  // the file's journal goes with it
    return 0;
  }

  FileUnits& units_;
  std::unique_ptr<NumericVar> status_;
  StringExpPtr name_;
  StringValue work_;
};

// CLOSE #n: the file number is free again, a text file's last lines written.
class CloseFileStmt final : public Statement {
 public:
  CloseFileStmt(FileUnits& units, NumericExpPtr number)
      : units_(units), number_(std::move(number)) {}
  Statement* Execute() override {
    float number = number_->Evaluate();
    FileUnit* unit = g_err.run ? nullptr : units_.Unit(number);
    if (!unit) return Fail(g_err.run);
    if (ErrorCode code = unit->Close()) return Fail(code);
    return successor_;
  }
  TokenCode Code() const override { return tok::kClose; }
  size_t Size() const override { return sizeof *this + number_->Size(); }
  void List(std::string& out) const override {
    out += "CLOSE #";
    number_->List(out);
  }

 private:
  FileUnits& units_;
  NumericExpPtr number_;
};

// A FILES name: a string literal, or the raw text up to the next "," or the
// end of the statement, blanks trimmed, so that FILES DATA1,BOOKS/X.DAT,*ZZ,$LIB
// read as written; "*" alone is the free slot.
bool ParseFilesName(StmtContext& p, std::vector<FilesName>* names) {
  if (p.Accept(tok::kString)) {
    names->push_back({std::string(p.Text()), true});
    return true;
  }
  size_t from = p.Mark() ? p.Current().rawEnd : 0, to = from;
  for (;;) {
    TokenCode code = p.Peek();
    if (code == tok::kComma || code == tok::kEndOfLine || code == tok::kComment) break;
    p.GetToken();
    to = p.Current().rawEnd;
  }
  std::string_view raw(p.LineText(), p.LineLength());
  raw = raw.substr(from, to - from);
  while (!raw.empty() && raw.front() == ' ') raw.remove_prefix(1);
  while (!raw.empty() && raw.back() == ' ') raw.remove_suffix(1);
  if (raw.empty()) {
    SetParseError(err::kBadStringArg);
    return false;
  }
  names->push_back({std::string(raw), false});
  return true;
}

// The next "," of an argument list; 40 when it is missing.
bool ExpectComma(StmtContext& p) {
  if (p.Accept(tok::kComma)) return true;
  SetParseError(err::kMissingDelimiter);
  return false;
}

NumericExpPtr ExpectNumber(StmtContext& p) {
  NumericExpPtr e = ParseNumericExp(p);
  if (!e && !g_err.parse) SetParseError(err::kBadNumericExp);
  return e;
}

StringExpPtr ExpectString(StmtContext& p) {
  StringExpPtr e = ParseStringExp(p);
  if (!e && !g_err.parse) SetParseError(err::kBadStringExp);
  return e;
}

std::unique_ptr<NumericVar> ExpectStatusVar(StmtContext& p) {
  auto var = ParseNumericVar(p);
  if (!var && !g_err.parse) SetParseError(err::kBadNumericVar);
  return var;
}

}  // namespace

StatementPtr ParseFiles(StmtContext& p) {
  std::vector<FilesName> names;
  do {
    if (!ParseFilesName(p, &names)) return nullptr;
  } while (p.Accept(tok::kComma));
  return std::make_unique<FilesStmt>(*p.run.files, std::move(names));
}

StatementPtr ParseAssign(StmtContext& p) {
  StringExpPtr name;
  if (!p.Accept(tok::kStar) && !(name = ExpectString(p))) return nullptr;
  if (!ExpectComma(p)) return nullptr;
  NumericExpPtr number = ExpectNumber(p);
  if (!number || !ExpectComma(p)) return nullptr;
  auto status = ExpectStatusVar(p);
  if (!status) return nullptr;
  TokenCode restriction = 0;
  StringExpPtr restrictionExp;
  if (p.Accept(tok::kComma)) {
    TokenCode word = p.Peek();
    if (word == tok::kRr || word == tok::kWr || word == tok::kNr) {
      restriction = p.GetToken();
    } else if (!(restrictionExp = ParseStringExp(p))) {
      bool missing = word == tok::kEndOfLine || word == tok::kComment;
      SetParseError(missing ? err::kBadFileRestrictions : err::kBadFileRestriction);
      return nullptr;
    }
  }
  return std::make_unique<AssignStmt>(*p.run.files, std::move(name), std::move(number),
                                      std::move(status), restriction, std::move(restrictionExp));
}

StatementPtr ParseCreate(StmtContext& p) {
  auto status = ExpectStatusVar(p);
  if (!status || !ExpectComma(p)) return nullptr;
  StringExpPtr name = ExpectString(p);
  if (!name || !ExpectComma(p)) return nullptr;
  NumericExpPtr records = ExpectNumber(p);
  if (!records) return nullptr;
  NumericExpPtr words;
  if (p.Accept(tok::kComma) && !(words = ExpectNumber(p))) return nullptr;
  return std::make_unique<CreateStmt>(std::move(status), std::move(name), std::move(records),
                                      std::move(words));
}

StatementPtr ParsePurge(StmtContext& p) {
  auto status = ExpectStatusVar(p);
  if (!status || !ExpectComma(p)) return nullptr;
  StringExpPtr name = ExpectString(p);
  if (!name) return nullptr;
  return std::make_unique<PurgeStmt>(*p.run.files, std::move(status), std::move(name));
}

StatementPtr ParseCloseFile(StmtContext& p) {
  if (!p.Accept(tok::kHash)) {
    SetParseError(err::kMissingFileNumber);
    return nullptr;
  }
  NumericExpPtr number = ParseNumericExp(p);
  if (!number) {
    if (!g_err.parse) SetParseError(err::kMissingFileNumber);
    return nullptr;
  }
  return std::make_unique<CloseFileStmt>(*p.run.files, std::move(number));
}
