#include "expr/variables.h"

#include <cmath>
#include <new>

#include "base/convert.h"
#include "base/dialect.h"
#include "expr/expr_context.h"
#include "expr/operands.h"
#include "lex/parse_attempt.h"

namespace {

// Past this a string result or target would overflow.
constexpr int64_t kLongest = kMaxStringLength;

void ListSubscripts(std::string& out, const std::vector<NumericExpPtr>& subscripts) {
  out += '(';
  for (size_t i = 0; i < subscripts.size(); ++i) {
    if (i) out += ',';
    subscripts[i]->List(out);
  }
  out += ')';
}

size_t SubscriptsSize(const std::vector<NumericExpPtr>& subscripts) {
  size_t size = 0;
  for (const auto& s : subscripts) size += s->Size();
  return size;
}

// Subscripts in any bracket pair, at least one, separated by ",".
bool ParseSubscripts(ExprContext& p, std::vector<NumericExpPtr>* out) {
  ParseAttempt attempt(p);
  if (!p.AcceptOpen()) return false;
  do {
    NumericExpPtr e = ParseNumericExp(p);
    if (!e) {
      attempt.Fail(err::kBadSubscript);
      return false;
    }
    out->push_back(std::move(e));
  } while (p.Accept(tok::kComma));
  if (!p.AcceptClose()) {
    SetParseError(err::kMissingRParen);
    return false;
  }
  return true;
}

// Binds an array reference: an undeclared array used with one subscript gets
// ten elements, under the classic switch one with two gets 10 by 10; the
// subscript count must match the dimensions.
template <typename Data, typename Maker>
ErrorCode BindArray(std::unique_ptr<Data>& array, const VarToken* name, size_t subscripts,
                    Maker make, Data** bound) {
  if (!array) {
    bool square = subscripts == 2 && g_classic;
    if (subscripts != 1 && !square) return err::kUnknownDimensions;
    if (ErrorCode code = make(name, square ? DimensionList({10, 10}) : DimensionList({10}), &array))
      return code;
  }
  if (array->dims.Count() != subscripts) return err::kDimensionMismatch;
  *bound = array.get();
  return 0;
}

// Raises kSubscriptOutOfBounds for an element out of bounds, unless a subscript raised an error
// first.
std::nullptr_t OutOfBounds() {
  if (!g_err.run) SetRunError(err::kSubscriptOutOfBounds);
  return nullptr;
}

// MAT may have given the array another number of dimensions since the link.
[[gnu::cold]] std::nullptr_t Reshaped() {
  if (!g_err.run) SetRunError(err::kDimensionMismatch);
  return nullptr;
}

// The element that subscripts address: the last one must lie inside its bound;
// an earlier one outside its bound adds nothing (the first row is addressed).
// Subscripts are evaluated last to first, as the index is resolved.
template <typename Data>
auto ElementOf(Data* data, float first) -> decltype(&data->elements[0]) {
  uint32_t index;
  if (data->dims.Count() != 1) [[unlikely]]
    return Reshaped();
  if (!conv::SubscriptIndex(first, data->dims.Bound(0), &index)) return OutOfBounds();
  return &data->elements[index];
}

template <typename Data>
auto ElementOf(Data* data, float first, float second) -> decltype(&data->elements[0]) {
  uint32_t index, row;
  if (data->dims.Count() != 2) [[unlikely]]
    return Reshaped();
  if (!conv::SubscriptIndex(second, data->dims.Bound(1), &index)) return OutOfBounds();
  if (conv::SubscriptIndex(first, data->dims.Bound(0), &row)) index += row * data->dims.Stride(0);
  return &data->elements[index];
}

template <typename Data>
auto ElementOf(Data* data, std::vector<NumericExpPtr>& subscripts, std::vector<float>& values)
    -> decltype(&data->elements[0]) {
  for (size_t i = subscripts.size(); i-- > 0;) values[i] = subscripts[i]->Evaluate();
  if (data->dims.Count() != values.size()) [[unlikely]]
    return Reshaped();
  int64_t index = ElementIndex(data->dims, values.data());
  if (index < 0) return OutOfBounds();
  return &data->elements[index];
}

// Where an element class finds its element: the subscripts read through
// operand forms (one or two of them), or through the list (any number).
template <typename S>
class At1 final {
 public:
  explicit At1(std::vector<NumericExpPtr>& subscripts) : s_(LookThrough(subscripts[0].get())) {}
  template <typename Data>
  auto Find(Data* data) {
    return ElementOf(data, s_.Get());
  }

 private:
  S s_;
};

template <typename S1, typename S2>
class At2 final {
 public:
  explicit At2(std::vector<NumericExpPtr>& subscripts)
      : s1_(LookThrough(subscripts[0].get())), s2_(LookThrough(subscripts[1].get())) {}
  template <typename Data>
  auto Find(Data* data) {
    float second = s2_.Get();
    return ElementOf(data, s1_.Get(), second);
  }

 private:
  S1 s1_;
  S2 s2_;
};

class AtN final {
 public:
  explicit AtN(std::vector<NumericExpPtr>& subscripts)
      : subscripts_(subscripts), values_(subscripts.size()) {}
  template <typename Data>
  auto Find(Data* data) {
    return ElementOf(data, subscripts_, values_);
  }

 private:
  std::vector<NumericExpPtr>& subscripts_;  // the owning node's
  std::vector<float> values_;  // evaluated subscripts; sized once, so reads never allocate
};

template <typename At>
class NumericElement final : public NumericScriptVar {
 public:
  NumericElement(const VarToken* name, std::vector<NumericExpPtr> subscripts)
      : NumericScriptVar(name, std::move(subscripts)), at_(subscripts_) {}
  float Evaluate() override {
    float* element = at_.Find(data_);
    return element ? ReadValue(*element) : 0.0f;
  }
  void Assign(float value) override {
    if (float* element = at_.Find(data_)) *element = value;
  }

 private:
  At at_;
};

template <typename At>
class StringElement final : public StringScriptVar {
 public:
  StringElement(const VarToken* name, std::vector<NumericExpPtr> subscripts)
      : StringScriptVar(name, std::move(subscripts)), at_(subscripts_) {
    quiet_ = true;
    for (const auto& s : subscripts_)
      quiet_ = quiet_ && (FormOf(LookThrough(s.get())) == OperandForm::kVar ||
                          FormOf(LookThrough(s.get())) == OperandForm::kConst);
  }
  StringValue* Locate() override { return at_.Find(data_); }
  bool Quiet() const override { return quiet_; }

 private:
  At at_;
  bool quiet_;  // every subscript a literal or a simple variable
};

// The element class that fits the subscripts.
template <template <typename> class Element, typename Base>
std::unique_ptr<Base> MakeElement(const VarToken* name, std::vector<NumericExpPtr> subscripts) {
  NumericExp* first = subscripts[0].get();
  if (subscripts.size() == 1) {
    return WithVarOperand(first, [&](auto s) -> std::unique_ptr<Base> {
      return std::make_unique<Element<At1<decltype(s)>>>(name, std::move(subscripts));
    });
  }
  if (subscripts.size() == 2) {
    NumericExp* second = subscripts[1].get();
    return WithVarOperand(first, [&](auto s1) {
      return WithVarOperand(second, [&](auto s2) -> std::unique_ptr<Base> {
        using At = At2<decltype(s1), decltype(s2)>;
        return std::make_unique<Element<At>>(name, std::move(subscripts));
      });
    });
  }
  return std::make_unique<Element<AtN>>(name, std::move(subscripts));
}

template <typename T>
std::unique_ptr<T> Register(ExprContext& p, std::unique_ptr<T> ref) {
  p.References().Append(ref.get());
  return ref;
}

// The variable a symbol token names; null for keywords and other tokens.
const VarToken* SymbolOf(const ExprContext& p, TokenCode code) {
  TokenCode category = tok::Category(code);
  bool variable = category == tok::kNumVar || category == tok::kStrVar ||
                  category == tok::kNumArray || category == tok::kStrArray;
  return variable && code >= tok::kFirstCoded ? static_cast<const VarToken*>(p.Symbol()) : nullptr;
}

// The error of a substring length that is no count: below 0, past the
// longest string, or NaN, which names no length at all.
ErrorCode LengthError(double count) {
  if (count < 0) return err::kNegativeLength;
  return std::isnan(count) ? err::kSubstringOutOfBounds : err::kStringOverflow;
}

}  // namespace

// --- Numeric references.

void NumericSimpleVar::List(std::string& out) const { out += name_->Name(); }

ErrorCode NumericSimpleVar::Link(ExprContext& prog) {
  data_ = prog.variables.NumericSimple(name_);
  return 0;
}

void NumericParmVar::List(std::string& out) const { out += name_->Name(); }
float NumericParmVar::Evaluate() { return ReadValue(frames_.Number(slot_)); }
void NumericParmVar::Assign(float value) { frames_.Number(slot_) = value; }

size_t NumericScriptVar::Size() const { return sizeof *this + SubscriptsSize(subscripts_); }

void NumericScriptVar::List(std::string& out) const {
  out += name_->Name();
  ListSubscripts(out, subscripts_);
}

ErrorCode NumericScriptVar::Link(ExprContext& prog) {
  return BindArray(prog.variables.NumericArray(name_), name_, subscripts_.size(), MakeNumericArray,
                   &data_);
}

// --- String references.

void StringSimpleVar::List(std::string& out) const { out += name_->Name(); }

ErrorCode StringSimpleVar::Link(ExprContext& prog) {
  data_ = prog.variables.StringSimple(name_);
  return 0;
}

void StringParmVar::List(std::string& out) const { out += name_->Name(); }
StringValue* StringParmVar::Locate() { return &frames_.String(slot_); }

size_t StringScriptVar::Size() const { return sizeof *this + SubscriptsSize(subscripts_); }

void StringScriptVar::List(std::string& out) const {
  out += name_->Name();
  ListSubscripts(out, subscripts_);
}

ErrorCode StringScriptVar::Link(ExprContext& prog) {
  return BindArray(prog.variables.StringArray(name_), name_, subscripts_.size(), MakeStringArray,
                   &data_);
}

// --- Whole arrays.

void NumericMatrixVar::List(std::string& out) const { out += name_->Name(); }

ErrorCode NumericMatrixVar::Link(ExprContext& prog) {
  auto& slot = prog.variables.NumericArray(name_);
  if (!slot)
    if (ErrorCode code = MakeNumericArray(name_, DimensionList({10}), &slot)) return code;
  data_ = slot.get();
  return 0;
}

void StringMatrixVar::List(std::string& out) const { out += name_->Name(); }

ErrorCode StringMatrixVar::Link(ExprContext& prog) {
  auto& slot = prog.variables.StringArray(name_);
  if (!slot)
    if (ErrorCode code = MakeStringArray(name_, DimensionList({10}), &slot)) return code;
  data_ = slot.get();
  return 0;
}

// --- Substrings.

size_t StringLimit::Size() const {
  return sizeof *this + start_->Size() + (second_ ? second_->Size() : 0);
}

void StringLimit::List(std::string& out) const {
  out += '[';
  start_->List(out);
  if (form_ != kFirst) {
    out += form_ == kRange ? ',' : ';';
    second_->List(out);
  }
  out += ']';
}

void StringLimit::Evaluate(double* start, double* count) const {
  *start = conv::RoundHalfUp(start_->Evaluate());
  if (form_ == kFirst) return;
  double second = conv::RoundHalfUp(second_->Evaluate());
  *count = form_ == kRange ? second - *start + 1 : second;
}

void StringSubVar::List(std::string& out) const {
  base_->List(out);
  limit_->List(out);
}

std::string_view StringSubVar::Evaluate(StringValue& work) {
  double start, count = 0;
  limit_->Evaluate(&start, &count);
  std::string_view text = base_->Evaluate(work);
  int64_t first;  // 1-based; NaN names no position
  if (!conv::ToIntIn(start, 1, 65535, &first)) {
    SetRunError(err::kSubstringOutOfBounds);
    return {};
  }
  size_t from = static_cast<size_t>(first - 1);
  if (limit_->form() == StringLimit::kFirst) return from < text.size() ? text.substr(from) : "";
  int64_t n;
  if (!conv::ToIntIn(count, 0, kLongest, &n)) {
    SetRunError(LengthError(count));
    return {};
  }
  // Past the end of the source the result is padded with blanks to the full count.
  if (from + static_cast<size_t>(n) <= text.size())
    return text.substr(from, static_cast<size_t>(n));
  std::string_view present = from < text.size() ? text.substr(from) : "";
  if (present.data() != work.Data()) {
    work.Clear();
    work.Append(present);
  } else {
    work.SetLength(static_cast<uint32_t>(present.size()));
  }
  work.AppendBlanks(static_cast<uint32_t>(static_cast<size_t>(n) - present.size()));
  return work.View();
}

void StringSubVar::Assign(std::string_view text) {
  double start, count = 0;
  limit_->Evaluate(&start, &count);
  StringValue* target = base_->Locate();
  if (!target) return;
  int64_t s;  // 1-based, at most one past the end: no gap may open
  if (!conv::ToIntIn(start, 1, int64_t{target->Length()} + 1, &s)) {
    SetRunError(start == 0 || std::isnan(start) ? err::kSubstringOutOfBounds : err::kSubstringGap);
    return;
  }
  if (limit_->form() == StringLimit::kFirst) {
    // The length ends one past the copied text: the character the buffer already
    // held there becomes the last one. This off-by-one is the form's defined result;
    // the classic language ends the string with the copied text.
    uint64_t m = static_cast<uint64_t>(s) + text.size() - (g_classic ? 1 : 0);
    if (m > uint64_t{kLongest}) {
      SetRunError(err::kStringOverflow);
      return;
    }
    target->Reserve(m);
    CopyChars(target->Data() + s - 1, text);
    target->SetLength(static_cast<uint32_t>(m));
    SetRunError(0);
    return;
  }
  int64_t n;
  if (!conv::ToIntIn(count, 0, kLongest - s, &n)) {
    SetRunError(LengthError(count));
    return;
  }
  uint32_t oldLength = target->Length();
  uint64_t end = static_cast<uint64_t>(s - 1 + n);
  target->Reserve(end);
  size_t copied = std::min<size_t>(static_cast<size_t>(n), text.size());
  CopyChars(target->Data() + s - 1, text.substr(0, copied));
  std::memset(target->Data() + s - 1 + copied, ' ', static_cast<size_t>(n) - copied);
  target->SetLength(static_cast<uint32_t>(std::max<uint64_t>(oldLength, end)));
}

// --- Parsers.

std::unique_ptr<NumericVar> ParseNumericVar(ExprContext& p) {
  ParseAttempt attempt(p);
  TokenCode code = p.GetToken();
  const VarToken* name = SymbolOf(p, code);
  if (tok::Category(code) == tok::kNumVar && name) {
    if (p.params) {
      int slot = p.params->NumericSlot(name);
      if (slot >= 0)
        return Register<NumericVar>(p, std::make_unique<NumericParmVar>(name, p.calls, slot));
    }
    return Register<NumericVar>(p, std::make_unique<NumericSimpleVar>(name));
  }
  if (tok::Category(code) == tok::kNumArray && name) {
    std::vector<NumericExpPtr> subscripts;
    if (ParseSubscripts(p, &subscripts))
      return Register<NumericVar>(
          p, MakeElement<NumericElement, NumericScriptVar>(name, std::move(subscripts)));
  }
  return attempt.Fail();
}

std::unique_ptr<StringVar> ParseStringVar(ExprContext& p) {
  ParseAttempt attempt(p);
  TokenCode code = p.GetToken();
  const VarToken* name = SymbolOf(p, code);
  std::unique_ptr<StringWholeVar> base;
  if (tok::Category(code) == tok::kStrVar && name) {
    int slot = p.params ? p.params->StringSlot(name) : -1;
    if (slot >= 0)
      base = std::make_unique<StringParmVar>(name, p.calls, slot);
    else
      base = std::make_unique<StringSimpleVar>(name);
  } else if (tok::Category(code) == tok::kStrArray && name) {
    std::vector<NumericExpPtr> subscripts;
    if (ParseSubscripts(p, &subscripts))
      base = MakeElement<StringElement, StringScriptVar>(name, std::move(subscripts));
  }
  if (!base) return attempt.Fail();
  p.References().Append(base.get());
  if (!p.Accept(tok::kLBracket)) return base;
  NumericExpPtr start = ParseNumericExp(p);
  NumericExpPtr second;
  StringLimit::Form form = StringLimit::kFirst;
  if (start) {
    if (p.Accept(tok::kComma))
      form = StringLimit::kRange;
    else if (p.Accept(tok::kSemicolon))
      form = StringLimit::kLength;
    if (form != StringLimit::kFirst) second = ParseNumericExp(p);
  }
  if (!start || (form != StringLimit::kFirst && !second)) return attempt.Fail(err::kBadSubstring);
  if (!p.AcceptCloser(tok::kLBracket)) return attempt.Replace(err::kMissingRBracket);
  auto limit = std::make_unique<StringLimit>(form, std::move(start), std::move(second));
  return std::make_unique<StringSubVar>(std::move(base), std::move(limit));
}

namespace {

// The array symbol of the name a token carries: "A" and "A(" name the same
// array; a bracket after the name is a token of its own, left for the caller.
template <typename Var>
std::unique_ptr<Var> ParseMatrix(ExprContext& p, TokenCode simple, TokenCode array) {
  ParseAttempt attempt(p);
  TokenCode code = p.GetToken();
  const VarToken* name = SymbolOf(p, code);
  TokenCode category = tok::Category(code);
  if (!name || (category != simple && category != array)) return attempt.Fail();
  if (category == simple) name = p.Table(array).FindOrCreate(name->Name());
  if (!name) return attempt.Fail();  // the array table is full
  return Register(p, std::make_unique<Var>(name));
}

}  // namespace

std::unique_ptr<NumericMatrixVar> ParseNumericMatrix(ExprContext& p) {
  return ParseMatrix<NumericMatrixVar>(p, tok::kNumVar, tok::kNumArray);
}

std::unique_ptr<StringMatrixVar> ParseStringMatrix(ExprContext& p) {
  return ParseMatrix<StringMatrixVar>(p, tok::kStrVar, tok::kStrArray);
}
