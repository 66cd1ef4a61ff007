// DATA, READ and RESTORE, and the ON END / OFF END pair that names where READ
// goes when the data runs out.
#include <cstdio>
#include <cstdlib>

#include "lex/parse_attempt.h"
#include "stmt/data_reader.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"
#include "stmt/targets.h"

namespace {

// The shortest "%G" form that reads back as the same 32-bit value.
void ListDataNumber(std::string& out, float value) {
  char buf[32];
  for (int digits = 6; digits <= 9; ++digits) {
    std::snprintf(buf, sizeof buf, "%.*G", digits, double{value});
    if (std::strtof(buf, nullptr) == value) break;
  }
  out += buf;
}

}  // namespace

// Constants for READ; never executed. The link pass chains the DATA
// statements in program order, so READ never walks the statement list.
class DataStmt final : public Statement {
 public:
  DataStmt(DataReader& reader, std::vector<DataItem> items)
      : reader_(reader), items_(std::move(items)) {}
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kData; }
  size_t Size() const override {
    size_t size = sizeof *this;
    for (const auto& item : items_) size += sizeof item + item.text.size();
    return size;
  }
  void List(std::string& out) const override {
    out += "DATA ";
    for (size_t i = 0; i < items_.size(); ++i) {
      if (i) out += ',';
      if (items_[i].type == tok::kStrVar)
        ListStringLiteral(out, items_[i].text);
      else
        ListDataNumber(out, items_[i].number);
    }
  }
  bool IsExecutable() const override { return false; }
  ErrorCode Check(StmtContext&) override {
    next_ = nullptr;
    if (!reader_.first) {
      reader_.first = this;
      reader_.current = this;
      reader_.item = items_.data();
    } else {
      reader_.last->next_ = this;
    }
    reader_.last = this;
    return 0;
  }
  bool AcceptsRestore() override {
    reader_.current = this;
    reader_.item = items_.data();
    return true;
  }
  // Moves the reader past its current item, into the next DATA at the end of this one.
  void Advance() const {
    const DataItem* next = reader_.item + 1;
    if (next != items_.data() + items_.size()) {
      reader_.item = next;
      return;
    }
    reader_.current = next_;
    reader_.item = next_ ? next_->items_.data() : nullptr;
  }

 private:
  DataReader& reader_;
  std::vector<DataItem> items_;  // never empty
  DataStmt* next_ = nullptr;
};

void DataReader::Forget(Statement* stmt) {
  if (stmt != current) return;
  current = nullptr;
  item = nullptr;
  if (Statement* next = stmt->Next()) next->RestoreHere();
}

void DataReader::RestoreFirst() {
  if (first) first->AcceptsRestore();
}

const DataItem* TakeDataItem(DataReader& reader) {
  const DataItem* item = reader.item;
  if (item) reader.current->Advance();
  return item;
}

namespace {

class ReadDataStmt final : public Statement {
 public:
  ReadDataStmt(DataReader& reader, TargetList targets)
      : reader_(reader), targets_(std::move(targets)) {}
  Statement* Execute() override {
    for (const auto& target : targets_) {
      const DataItem* item = TakeDataItem(reader_);
      if (!item) return reader_.endTarget ? reader_.endTarget : Fail(err::kOutOfData);
      if (item->type == tok::kNumVar) {
        if (target->IsString()) return Fail(err::kDataWrongType);
        target->Assign(item->number);
      } else if (item->type == tok::kStrVar) {
        if (!target->IsString()) return Fail(err::kDataWrongType);
        target->Assign(std::string_view(item->text));
      } else {
        return Fail(err::kUnknownDataType);
      }
      if (g_err.run) break;
    }
    return successor_;
  }
  TokenCode Code() const override { return tok::kRead; }
  size_t Size() const override { return sizeof *this + TargetsSize(targets_); }
  void List(std::string& out) const override {
    out += "READ";
    if (targets_.empty()) return;
    out += ' ';
    ListTargets(out, targets_);
  }

 private:
  DataReader& reader_;
  TargetList targets_;
};

class RestoreAllStmt final : public Statement {
 public:
  explicit RestoreAllStmt(DataReader& reader) : reader_(reader) {}
  Statement* Execute() override {
    reader_.RestoreFirst();
    return successor_;
  }
  TokenCode Code() const override { return tok::kRestore; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "RESTORE"; }

 private:
  DataReader& reader_;
};

// Bound to the statement named, not to the next executable one, because a
// DATA statement never executes; a later DATA takes over from any other one.
class RestoreLineStmt final : public Statement {
 public:
  RestoreLineStmt(DataReader& reader, TargetRef target)
      : reader_(reader), target_(std::move(target)) {}
  Statement* Execute() override {
    if (Statement* named = target_.Named())
      named->RestoreHere();
    else
      reader_.RestoreFirst();
    return successor_;
  }
  TokenCode Code() const override { return tok::kRestore; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override {
    out += "RESTORE ";
    target_.List(out);
  }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    out.push_back(target_.get());
  }
  ErrorCode Resolve(StmtContext&) override { return target_.Named() ? 0 : err::kUndefinedTarget; }

 private:
  DataReader& reader_;
  TargetRef target_;
};

class OnEndDataStmt final : public Statement {
 public:
  OnEndDataStmt(DataReader& reader, TargetRef target)
      : reader_(reader), target_(std::move(target)) {}
  Statement* Execute() override {
    reader_.endTarget = target_.Landing();
    return successor_;
  }
  TokenCode Code() const override { return tok::kOn; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override {
    out += "ON END THEN ";
    target_.List(out);
  }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    out.push_back(target_.get());
  }
  ErrorCode Resolve(StmtContext&) override { return target_.Named() ? 0 : err::kUndefinedTarget; }

 private:
  DataReader& reader_;
  TargetRef target_;
};

class OffEndStmt final : public Statement {
 public:
  explicit OffEndStmt(DataReader& reader) : reader_(reader) {}
  Statement* Execute() override {
    reader_.endTarget = nullptr;
    return successor_;
  }
  TokenCode Code() const override { return tok::kOn; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "OFF END"; }

 private:
  DataReader& reader_;
};

bool AtLineEnd(StmtContext& p) {
  TokenCode next = p.Peek();
  return next == tok::kEndOfLine || next == tok::kComment;
}

}  // namespace

StatementPtr ParseData(StmtContext& p) {
  ParseAttempt attempt(p);
  std::vector<DataItem> items;
  do {
    DataItem item{tok::kNumVar, 0.0f, {}};
    // A "+" may stand before a number (+.12), as "-" may; never before both.
    bool plus = p.Accept(tok::kPlus);
    if (plus && p.Peek() == tok::kMinus) return attempt.Replace(err::kBadConstant);
    if (p.AcceptConstant(&item.number)) {
      items.push_back(std::move(item));
    } else if (!plus && p.Accept(tok::kString)) {
      item.type = tok::kStrVar;
      item.text = p.Text();
      items.push_back(std::move(item));
    } else {
      return attempt.Replace(err::kBadConstant);
    }
  } while (p.Accept(tok::kComma));
  return std::make_unique<DataStmt>(p.run.data, std::move(items));
}

StatementPtr ParseRead(StmtContext& p) {
  TargetList targets;
  if (!ParseTargetList(p, &targets)) return nullptr;
  return std::make_unique<ReadDataStmt>(p.run.data, std::move(targets));
}

// RESTORE, RESTORE <stmtIdentifier>, or RESTORE <selector> OF <targets>.
StatementPtr ParseRestore(StmtContext& p) {
  if (AtLineEnd(p)) return std::make_unique<RestoreAllStmt>(p.run.data);
  ParseAttempt attempt(p);
  if (TargetRef target = ParseTarget(p); target && AtLineEnd(p))
    return std::make_unique<RestoreLineStmt>(p.run.data, std::move(target));
  attempt.Rewind();
  if (NumericExpPtr selector = ParseNumericExp(p); selector && p.Peek() == tok::kOf)
    return ParseRestoreOf(p, std::move(selector));
  return attempt.Fail(err::kBadStmtNumber);
}

StatementPtr ParseOnEnd(StmtContext& p) {
  TargetRef target = ParseThenTarget(p);
  if (!target) return nullptr;
  return std::make_unique<OnEndDataStmt>(p.run.data, std::move(target));
}

StatementPtr ParseOffEnd(StmtContext& p) { return std::make_unique<OffEndStmt>(p.run.data); }
