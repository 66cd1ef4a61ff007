// IMAGE and PRINT USING: a format named by statement number or label, or
// given by a string expression, and the values it lays out.
#include "base/dialect.h"
#include "console/console.h"
#include "format/using_list.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

// Formats are read in the grammar the classic switch chooses.
ImageFormat::Grammar SwitchGrammar() {
  return g_classic ? ImageFormat::kClassic : ImageFormat::kOwn;
}

// The format text, kept as typed and read into its items; read again when a
// run links it after the classic switch changed.
class ImageStmt final : public Statement {
 public:
  explicit ImageStmt(std::string_view text) : text_(text), format_(text, SwitchGrammar()) {}
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kImage; }
  size_t Size() const override { return sizeof *this + text_.size() + format_.Size(); }
  void List(std::string& out) const override {
    out += "IMAGE ";
    out += text_;
  }
  bool IsExecutable() const override { return false; }
  const ImageFormat* Image() const override {
    if (format_.ReadAs() != SwitchGrammar()) format_.Compile(text_, SwitchGrammar());
    return &format_;
  }

 private:
  std::string text_;
  mutable ImageFormat format_;  // the text's items, as the last link read them
};

// Where the format comes from.
class UsingPart {
 public:
  virtual ~UsingPart() = default;
  virtual size_t Size() const = 0;
  virtual void List(std::string& out) const = 0;
  virtual ErrorCode Resolve(StmtContext&) { return 0; }
  virtual void Targets(std::vector<const TargetLabel*>&) const {}
  // The format for this execution.
  virtual const ImageFormat& Format() = 0;
};

// An IMAGE statement by number or label; a label line leads to its statement.
class UsingImagePart final : public UsingPart {
 public:
  explicit UsingImagePart(TargetRef target) : target_(std::move(target)) {}
  size_t Size() const override { return sizeof *this; }
  void List(std::string& out) const override { target_.List(out); }
  void Targets(std::vector<const TargetLabel*>& out) const override {
    out.push_back(target_.get());
  }
  ErrorCode Resolve(StmtContext&) override {
    image_ = nullptr;
    const Statement* s = target_.Named();
    if (!s) return err::kUndefinedTarget;
    while (s->Label() && s->Next() && s->Code() != tok::kImage) s = s->Next();
    image_ = s->Image();
    return image_ ? 0 : err::kNotImage;
  }
  const ImageFormat& Format() override { return *image_; }

 private:
  TargetRef target_;
  const ImageFormat* image_ = nullptr;  // bound by the link pass
};

// A string expression: read again only when its text changes.
class UsingStringPart final : public UsingPart {
 public:
  explicit UsingStringPart(StringExpPtr exp) : exp_(std::move(exp)) {}
  size_t Size() const override {
    return sizeof *this + exp_->Size() + work_.Capacity() + text_.capacity() + format_.Size();
  }
  void List(std::string& out) const override { exp_->List(out); }
  const ImageFormat& Format() override {
    std::string_view text = exp_->Evaluate(work_);
    if (!read_ || text != text_ || format_.ReadAs() != SwitchGrammar()) {
      format_.Compile(text, SwitchGrammar());
      // Texts too long to be formats are not kept; each use refuses them again.
      read_ = text.size() <= ImageFormat::kMaxText;
      if (read_) text_.assign(text);
    }
    return format_;
  }

 private:
  StringExpPtr exp_;
  StringValue work_;
  std::string text_;  // the text format_ was read from
  ImageFormat format_;
  bool read_ = false;
};

// Writes its line to the console the run is bound to.
class PrintConsoleUsingStmt final : public Statement {
 public:
  PrintConsoleUsingStmt(RunState& run, std::unique_ptr<UsingPart> part, UsingSpecList values)
      : run_(run), part_(std::move(part)), values_(std::move(values)) {}
  TokenCode Code() const override { return tok::kPrint; }
  size_t Size() const override {
    return sizeof *this + part_->Size() + values_.Size() + runner_.Size();
  }
  void List(std::string& out) const override {
    out += "PRINT USING ";
    part_->List(out);
    if (values_.Empty()) return;
    out += ';';
    values_.List(out);
  }
  ErrorCode Resolve(StmtContext& prog) override { return part_->Resolve(prog); }
  void Targets(std::vector<const TargetLabel*>& out) const override { part_->Targets(out); }

  // The line is written up to where a format error stopped it; a value that
  // failed (and printed as 0) does not stop it and keeps its own error.
  Statement* Execute() override {
    const ImageFormat& format = part_->Format();
    values_.Rewind();
    ErrorCode code = runner_.Run(format, values_, run_.console->Column());
    run_.console->Print(runner_.Line());
    runner_.Trim();
    if (code && !g_err.run) return Fail(code);
    return successor_;
  }

 private:
  RunState& run_;
  std::unique_ptr<UsingPart> part_;
  UsingSpecList values_;
  FormatRunner runner_;
};

}  // namespace

StatementPtr ParseImage(StmtContext& p) {
  std::string_view text = p.RestOfLine();
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  return std::make_unique<ImageStmt>(text);
}

// After USING: a statement number or label, else a string expression; then
// ";" and the values, or nothing.
StatementPtr ParsePrintUsing(StmtContext& p) {
  std::unique_ptr<UsingPart> part;
  if (TargetRef target = ParseTarget(p)) {
    part = std::make_unique<UsingImagePart>(std::move(target));
  } else if (StringExpPtr exp = ParseStringExp(p)) {
    part = std::make_unique<UsingStringPart>(std::move(exp));
  } else {
    SetParseError(err::kBadUsing);
    return nullptr;
  }
  UsingSpecList values;
  TokenCode next = p.Peek();
  if (next != tok::kEndOfLine && next != tok::kComment) {
    if (!p.Accept(tok::kSemicolon)) {
      SetParseError(err::kMissingSemicolon);
      return nullptr;
    }
    if (!values.Parse(p)) return nullptr;
  }
  return std::make_unique<PrintConsoleUsingStmt>(p.run, std::move(part), std::move(values));
}
