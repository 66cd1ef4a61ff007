// DIM and COM: arrays, declared string lengths and the variables that CHAIN
// hands on, created by the link pass.
#include <cmath>
#include <cstdint>

#include "base/convert.h"
#include "lex/parse_attempt.h"
#include "stmt/parsers.h"
#include "stmt/stmt_context.h"

namespace {

// One declared name of a DIM list.
class DimSpec {
 public:
  explicit DimSpec(const VarToken* name) : name_(name) {}
  virtual ~DimSpec() = default;
  // Creates the variable in the program; 61 when it exists already.
  virtual ErrorCode Link(StmtContext& prog) const = 0;
  // The variable Link created, for the COM list.
  virtual CommonEntry Entry(StmtContext& prog) const = 0;
  virtual void List(std::string& out) const = 0;
  virtual size_t Size() const { return sizeof *this; }
  // Two items clash when they declare the same name in the same heap.
  bool Clashes(const DimSpec& other) const {
    return name_ == other.name_ &&
           tok::Category(name_->Code()) == tok::Category(other.name_->Code());
  }

 protected:
  const VarToken* name_;
};
using DimSpecPtr = std::unique_ptr<DimSpec>;

void ListLength(std::string& out, uint32_t length) {
  out += '[';
  out += std::to_string(length);
  out += ']';
}

class DimNumericArraySpec final : public DimSpec {
 public:
  DimNumericArraySpec(const VarToken* name, std::vector<uint32_t> bounds)
      : DimSpec(name), bounds_(std::move(bounds)) {}
  ErrorCode Link(StmtContext& prog) const override {
    auto& slot = prog.variables.NumericArray(name_);
    if (slot) return err::kDimensionedTwice;
    return MakeNumericArray(name_, DimensionList(bounds_), &slot);
  }
  CommonEntry Entry(StmtContext& prog) const override {
    return prog.variables.NumericArray(name_).get();
  }
  void List(std::string& out) const override {
    out += name_->Name();
    out += '(';
    DimensionList(bounds_).List(out);
    out += ')';
  }
  size_t Size() const override { return sizeof *this + bounds_.size() * sizeof(uint32_t); }

 private:
  std::vector<uint32_t> bounds_;
};

// A string array; length 0 when none was declared (the length limits only
// what a text file puts in an element).
class DimStringArraySpec final : public DimSpec {
 public:
  DimStringArraySpec(const VarToken* name, std::vector<uint32_t> bounds, uint32_t length)
      : DimSpec(name), bounds_(std::move(bounds)), length_(length) {}
  ErrorCode Link(StmtContext& prog) const override {
    auto& slot = prog.variables.StringArray(name_);
    if (slot) return err::kDimensionedTwice;
    ErrorCode code = MakeStringArray(name_, DimensionList(bounds_), &slot);
    if (!code) slot->declared = length_;
    return code;
  }
  CommonEntry Entry(StmtContext& prog) const override {
    return prog.variables.StringArray(name_).get();
  }
  void List(std::string& out) const override {
    out += name_->Name();
    out += '(';
    DimensionList(bounds_).List(out);
    out += ')';
    if (length_) ListLength(out, length_);
  }
  size_t Size() const override { return sizeof *this + bounds_.size() * sizeof(uint32_t); }

 private:
  std::vector<uint32_t> bounds_;
  uint32_t length_;
};

// A string scalar with its declared length, which limits only what a text
// file puts in it; COM also takes one without a length (0).
class DimStringSimpleSpec final : public DimSpec {
 public:
  DimStringSimpleSpec(const VarToken* name, uint32_t length) : DimSpec(name), length_(length) {}
  ErrorCode Link(StmtContext& prog) const override {
    if (prog.variables.FindStringSimple(name_)) return err::kDimensionedTwice;
    prog.variables.StringSimple(name_)->declared = length_;
    return 0;
  }
  CommonEntry Entry(StmtContext& prog) const override { return prog.variables.StringSimple(name_); }
  void List(std::string& out) const override {
    out += name_->Name();
    if (length_) ListLength(out, length_);
  }

 private:
  uint32_t length_;
};

// A numeric scalar of a COM list.
class ComNumericSimpleSpec final : public DimSpec {
 public:
  explicit ComNumericSimpleSpec(const VarToken* name) : DimSpec(name) {}
  ErrorCode Link(StmtContext& prog) const override {
    if (prog.variables.FindNumericSimple(name_)) return err::kDimensionedTwice;
    prog.variables.NumericSimple(name_);
    return 0;
  }
  CommonEntry Entry(StmtContext& prog) const override {
    return prog.variables.NumericSimple(name_);
  }
  void List(std::string& out) const override { out += name_->Name(); }
};

class DimStmt final : public Statement {
 public:
  explicit DimStmt(std::vector<DimSpecPtr> specs) : specs_(std::move(specs)) {}
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kDim; }
  size_t Size() const override {
    size_t size = sizeof *this;
    for (const auto& s : specs_) size += s->Size();
    return size;
  }
  void List(std::string& out) const override {
    out += "DIM ";
    for (size_t i = 0; i < specs_.size(); ++i) {
      if (i) out += ',';
      specs_[i]->List(out);
    }
  }
  bool IsExecutable() const override { return false; }
  ErrorCode Check(StmtContext& prog) override {
    for (const auto& s : specs_)
      if (ErrorCode code = s->Link(prog)) return Raise(code, Location());
    return 0;
  }

 private:
  std::vector<DimSpecPtr> specs_;
};

// COM: declared like DIM, plus plain scalars; the link creates the variables
// and lists them in order, for CHAIN to hand on. Only remarks may precede it.
class ComStmt final : public Statement {
 public:
  explicit ComStmt(std::vector<DimSpecPtr> specs) : specs_(std::move(specs)) {}
  Statement* Execute() override { return successor_; }
  TokenCode Code() const override { return tok::kCom; }
  size_t Size() const override {
    size_t size = sizeof *this;
    for (const auto& s : specs_) size += s->Size();
    return size;
  }
  void List(std::string& out) const override {
    out += "COM ";
    for (size_t i = 0; i < specs_.size(); ++i) {
      if (i) out += ',';
      specs_[i]->List(out);
    }
  }
  bool IsExecutable() const override { return false; }
  ErrorCode Check(StmtContext& prog) override {
    for (const Statement* s = Prev(); s; s = s->Prev())
      if (s->IsCode() && s->Code() != tok::kCom) return Raise(err::kComNotFirst, Location());
    for (const auto& s : specs_) {
      if (ErrorCode code = s->Link(prog)) return Raise(code, Location());
      prog.common.push_back(s->Entry(prog));
    }
    return 0;
  }

 private:
  std::vector<DimSpecPtr> specs_;
};

// A bound or a declared length: a constant rounded half up; 67 below 0.5
// and when no constant is there.
bool ParseBound(StmtContext& p, uint32_t* out) {
  float value;
  if (!p.AcceptConstant(&value) || !(value >= 0.5f)) {
    SetParseError(err::kBadArgument);
    return false;
  }
  // Bounds past 32 bits are kept at the largest count; creating the array refuses them.
  *out = static_cast<uint32_t>(conv::ToIntClamped(conv::RoundHalfUp(value), 0, UINT32_MAX, 0));
  return true;
}

// "(" bounds ")"; numeric arrays also take "[" and "]", each side on its own.
// Every failure of the bounds is reported as 47.
bool ParseDimensions(StmtContext& p, bool numeric, std::vector<uint32_t>* bounds) {
  if (!p.Accept(tok::kLParen) && !(numeric && p.Accept(tok::kLBracket))) {
    SetParseError(err::kMissingLParen);
    return false;
  }
  bool ok = false;
  uint32_t bound;
  if (ParseBound(p, &bound)) {
    bounds->push_back(bound);
    ok = true;
    while (ok && p.Accept(tok::kComma)) {
      ok = ParseBound(p, &bound);
      if (ok) bounds->push_back(bound);
    }
  }
  if (!ok || !(p.Accept(tok::kRParen) || (numeric && p.Accept(tok::kRBracket)))) {
    SetParseError(err::kBadParamList);
    return false;
  }
  return true;
}

// "[" length "]" after a string name or array; 30 and 31 for missing brackets.
bool ParseLength(StmtContext& p, uint32_t* length) {
  if (!p.Accept(tok::kLBracket)) {
    SetParseError(err::kMissingLBracket);
    return false;
  }
  if (!ParseBound(p, length)) return false;
  if (!p.Accept(tok::kRBracket)) {
    SetParseError(err::kMissingRBracket);
    return false;
  }
  return true;
}

const VarToken* NameIn(StmtContext& p, TokenCode category) {
  if (tok::Category(p.GetToken()) != category) return nullptr;
  return static_cast<const VarToken*>(p.Symbol());
}

// One item, its forms tried in a fixed order; each failed attempt restores
// the position, and a later form is tried only while no error is stored.
DimSpecPtr ParseDimSpec(StmtContext& p) {
  ParseAttempt attempt(p);
  std::vector<uint32_t> bounds;
  uint32_t length = 0;

  // String array, with or without a length.
  if (const VarToken* name = NameIn(p, tok::kStrArray)) {
    if (!ParseDimensions(p, false, &bounds)) return attempt.Fail(err::kBadDimVar);
    if (!p.Accept(tok::kLBracket))
      return std::make_unique<DimStringArraySpec>(name, std::move(bounds), 0);
    if (ParseBound(p, &length)) {
      if (p.Accept(tok::kRBracket))
        return std::make_unique<DimStringArraySpec>(name, std::move(bounds), length);
      return attempt.Replace(err::kMissingRBracket);
    }
    return attempt.Fail();
  }
  attempt.Rewind();

  // String scalar: a length is required, so a bare name fails with kMissingLBracket.
  if (const VarToken* name = NameIn(p, tok::kStrVar)) {
    if (ParseLength(p, &length)) return std::make_unique<DimStringSimpleSpec>(name, length);
    return attempt.Fail();
  }
  attempt.Rewind();

  if (const VarToken* name = NameIn(p, tok::kNumArray)) {
    if (ParseDimensions(p, true, &bounds))
      return std::make_unique<DimNumericArraySpec>(name, std::move(bounds));
  }
  return attempt.Fail();
}

// A COM item: a plain numeric or string scalar, or anything DIM declares.
DimSpecPtr ParseComSpec(StmtContext& p) {
  ParseAttempt attempt(p);
  TokenCode code = p.GetToken();
  if (tok::Category(code) == tok::kNumVar && code >= tok::kFirstCoded && p.Symbol())
    return std::make_unique<ComNumericSimpleSpec>(static_cast<const VarToken*>(p.Symbol()));
  if (tok::Category(code) == tok::kStrVar && code >= tok::kFirstCoded && p.Symbol() &&
      p.Peek() != tok::kLBracket)
    return std::make_unique<DimStringSimpleSpec>(static_cast<const VarToken*>(p.Symbol()), 0);
  attempt.Rewind();
  return ParseDimSpec(p);
}

// Items separated by ","; no name twice in one list.
StatementPtr ParseSpecList(StmtContext& p, DimSpecPtr (*parseSpec)(StmtContext&), bool com) {
  ParseAttempt attempt(p);
  std::vector<DimSpecPtr> specs;
  DimSpecPtr first = parseSpec(p);
  if (!first) return attempt.Fail(err::kBadAllocation);
  specs.push_back(std::move(first));
  while (p.Accept(tok::kComma)) {
    DimSpecPtr next = parseSpec(p);
    if (!next) return attempt.Replace(err::kBadAllocation);
    specs.push_back(std::move(next));
  }
  for (size_t i = 0; i < specs.size(); ++i)
    for (size_t j = i + 1; j < specs.size(); ++j)
      if (specs[i]->Clashes(*specs[j])) return attempt.Replace(err::kDimensionedTwice);
  if (com) return std::make_unique<ComStmt>(std::move(specs));
  return std::make_unique<DimStmt>(std::move(specs));
}

}  // namespace

StatementPtr ParseDim(StmtContext& p) { return ParseSpecList(p, ParseDimSpec, false); }
StatementPtr ParseCom(StmtContext& p) { return ParseSpecList(p, ParseComSpec, true); }
