// The statements without a keyword of their own: blank lines, labels,
// comments, bad lines and the end mark; and REM.
#pragma once
#include <string>
#include <string_view>

#include "stmt/statement.h"

// A line holding only ";".
class BlankLineStmt final : public Statement {
 public:
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kBlankLineStmt; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string&) const override {}
  int IndentClass() const override { return kMargin; }
  bool IsCode() const override { return false; }
  bool IsExecutable() const override { return false; }
};

// A label alone on its line, or ahead of a statement (which follows it in the list).
class LabelStmt final : public Statement {
 public:
  LabelStmt(std::string_view name, bool followed) : name_(name), followed_(followed) {}
  // A bare label is skipped by the successor chain; reached directly it is unsupported.
  Statement* Execute() override { return Fail(err::kNotSupported); }
  TokenCode Code() const override { return tok::kLabelStmt; }
  size_t Size() const override { return sizeof *this + name_.size(); }
  void List(std::string& out) const override {
    out += name_;
    out += ':';
  }
  int IndentClass() const override { return kMargin; }
  bool IsCode() const override { return false; }
  bool IsExecutable() const override { return false; }
  const char* Label() const override { return name_.c_str(); }
  bool HasStatement() const { return followed_; }

 private:
  std::string name_;
  bool followed_;  // a statement follows on the line (the LabelStmtStmt form)
};

// "!" or "//" to the end of the line, alone or after a statement.
class CommentStmt final : public Statement {
 public:
  explicit CommentStmt(std::string_view text) : text_(text) {}
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kComment; }
  size_t Size() const override { return sizeof *this + text_.size(); }
  void List(std::string& out) const override { out += text_; }
  bool IsCode() const override { return false; }
  bool IsExecutable() const override { return false; }

 private:
  std::string text_;
};

class RemStmt final : public Statement {
 public:
  explicit RemStmt(std::string_view text) : text_(text) {}
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kRem; }
  size_t Size() const override { return sizeof *this + text_.size(); }
  void List(std::string& out) const override {
    out += "REM ";
    out += text_;
  }
  bool IsCode() const override { return false; }
  bool IsExecutable() const override { return false; }

 private:
  std::string text_;
};

// A line that failed to parse: kept with its text and error, and refusing every run.
class InvalidStmt final : public Statement {
 public:
  InvalidStmt(std::string_view text, ErrorCode code) : text_(text), code_(code) {}
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kBadLineStmt; }
  size_t Size() const override { return sizeof *this + text_.size(); }
  void List(std::string& out) const override {
    out += '?';
    out += text_;
  }
  bool IsExecutable() const override { return false; }
  ErrorCode ParseError() const override { return code_; }
  ErrorCode Check(StmtContext&) override { return code_; }

 private:
  std::string text_;
  ErrorCode code_;
};

// The hidden last statement: running into it stops the program as STOP does.
class EndMarkStmt final : public Statement {
 public:
  EndMarkStmt() { SetFlags(loc::kHidden); }
  Statement* Execute() override { return Fail(err::kStop); }
  TokenCode Code() const override { return tok::kEndMarkStmt; }
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { out += "ENDMARK"; }
  bool IsCode() const override { return false; }
};
