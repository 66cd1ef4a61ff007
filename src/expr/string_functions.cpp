// Functions over strings: DEC, LEN, NUM/ASC and POS give numbers; UPS$, CHR$,
// DEC$, LEFT$, RIGHT$ and MID$ give strings.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "base/convert.h"
#include "base/errors.h"
#include "expr/function_nodes.h"

std::string_view HoldIn(StringValue& work, std::string_view text) {
  const char* begin = work.Data();
  std::less_equal<const char*> le;
  if (le(begin, text.data()) && le(text.data(), begin + work.Capacity())) {
    CopyChars(work.Data(), text);
    work.SetLength(static_cast<uint32_t>(text.size()));
  } else {
    work.Clear();
    work.Append(text);
  }
  return work.View();
}

namespace {

// A numeric function of string arguments; each keeps its own work buffer.
class StringArgFunc : public NumericLibFunc {
 public:
  size_t Size() const override { return sizeof *this + first_->Size(); }

 protected:
  StringArgFunc(const KeyToken* key, StringExpPtr first)
      : NumericLibFunc(key), first_(std::move(first)) {}
  void ListArgs(std::string& out) const override { first_->List(out); }

  StringExpPtr first_;
  StringValue work_;
};

class DecFunc final : public StringArgFunc {
 public:
  DecFunc(const KeyToken* key, StringExpPtr text) : StringArgFunc(key, std::move(text)) {}
  float Evaluate() override {
    HoldIn(work_, first_->Evaluate(work_));  // the conversion wants a terminated text
    return static_cast<float>(std::strtod(work_.Data(), nullptr));
  }
};

class LenFunc final : public StringArgFunc {
 public:
  LenFunc(const KeyToken* key, StringExpPtr text) : StringArgFunc(key, std::move(text)) {}
  float Evaluate() override { return static_cast<float>(first_->Evaluate(work_).size()); }
};

class NumFunc final : public StringArgFunc {
 public:
  NumFunc(const KeyToken* key, StringExpPtr text) : StringArgFunc(key, std::move(text)) {}
  float Evaluate() override {
    std::string_view text = first_->Evaluate(work_);
    // Signed: characters 128-255 give -128 to -1.
    return text.empty() ? 0.0f : static_cast<float>(static_cast<signed char>(text[0]));
  }
};

class PosFunc final : public StringArgFunc {
 public:
  PosFunc(const KeyToken* key, StringExpPtr text, StringExpPtr pattern)
      : StringArgFunc(key, std::move(text)), pattern_(std::move(pattern)) {}
  size_t Size() const override { return sizeof *this + first_->Size() + pattern_->Size(); }
  float Evaluate() override {
    std::string_view text = HoldIn(work_, first_->Evaluate(work_));
    std::string_view pattern = pattern_->Evaluate(patternWork_);
    if (text.empty() || pattern.empty()) return 0.0f;
    size_t at = text.find(pattern);
    return at == std::string_view::npos ? 0.0f : static_cast<float>(at + 1);
  }

 private:
  void ListArgs(std::string& out) const override {
    first_->List(out);
    out += ',';
    pattern_->List(out);
  }

  StringExpPtr pattern_;
  StringValue patternWork_;
};

// --- String-valued functions; they evaluate into the caller's work buffer.

class UpsFunc final : public StringLibFunc {
 public:
  UpsFunc(const KeyToken* key, StringExpPtr text) : StringLibFunc(key), text_(std::move(text)) {}
  size_t Size() const override { return sizeof *this + text_->Size(); }
  std::string_view Evaluate(StringValue& work) override {
    HoldIn(work, text_->Evaluate(work));
    char* c = work.Data();
    for (uint32_t i = 0; i < work.Length(); ++i)
      if (c[i] >= 'a' && c[i] <= 'z') c[i] = static_cast<char>(c[i] - 32);
    return work.View();
  }

 private:
  void ListArgs(std::string& out) const override { text_->List(out); }
  StringExpPtr text_;
};

// CHR$ and DEC$: one numeric argument.
class NumberToString : public StringLibFunc {
 public:
  size_t Size() const override { return sizeof *this + number_->Size(); }

 protected:
  NumberToString(const KeyToken* key, NumericExpPtr number)
      : StringLibFunc(key), number_(std::move(number)) {}
  void ListArgs(std::string& out) const override { number_->List(out); }
  NumericExpPtr number_;
};

class ChrFunc final : public NumberToString {
 public:
  ChrFunc(const KeyToken* key, NumericExpPtr number) : NumberToString(key, std::move(number)) {}
  std::string_view Evaluate(StringValue& work) override {
    // The low byte of the rounded code; NaN and codes past 64 bits have none and give 0.
    int64_t whole = 0;
    conv::ToIntIn(conv::RoundHalfUp(number_->Evaluate()), INT64_MIN, INT64_MAX, &whole);
    work.Clear();
    work.Append(static_cast<char>(whole & 0xFF));
    return work.View();
  }
};

class DecStrFunc final : public NumberToString {
 public:
  DecStrFunc(const KeyToken* key, NumericExpPtr number) : NumberToString(key, std::move(number)) {}
  std::string_view Evaluate(StringValue& work) override {
    char text[32];
    float x = number_->Evaluate();
    // "nan" without a sign, as PRINT shows it; DEC reads "nan" and "inf" back.
    int n = std::snprintf(text, sizeof text, "%lg", std::isnan(x) ? std::fabs(x) : double{x});
    work.Clear();
    work.Append(std::string_view(text, n > 0 ? static_cast<size_t>(n) : 0));
    return work.View();
  }
};

// LEFT$, RIGHT$ and MID$: a string and one or two counts, the counts evaluated first.
class StringPart : public StringLibFunc {
 public:
  size_t Size() const override {
    return sizeof *this + text_->Size() + number_->Size() + (count_ ? count_->Size() : 0);
  }

 protected:
  StringPart(const KeyToken* key, StringExpPtr text, NumericExpPtr number, NumericExpPtr count)
      : StringLibFunc(key),
        text_(std::move(text)),
        number_(std::move(number)),
        count_(std::move(count)) {}
  void ListArgs(std::string& out) const override {
    text_->List(out);
    out += ',';
    number_->List(out);
    if (count_) {
      out += ',';
      count_->List(out);
    }
  }

  StringExpPtr text_;
  NumericExpPtr number_;
  NumericExpPtr count_;  // MID$ with three arguments only
};

class LeftFunc final : public StringPart {
 public:
  LeftFunc(const KeyToken* key, StringExpPtr text, NumericExpPtr number)
      : StringPart(key, std::move(text), std::move(number), nullptr) {}
  std::string_view Evaluate(StringValue& work) override {
    // Unsigned, so a negative count takes the whole string.
    auto n = static_cast<uint32_t>(TruncInt(number_->Evaluate()));
    std::string_view text = text_->Evaluate(work);
    return n >= text.size() ? text : text.substr(0, n);
  }
};

class RightFunc final : public StringPart {
 public:
  RightFunc(const KeyToken* key, StringExpPtr text, NumericExpPtr number)
      : StringPart(key, std::move(text), std::move(number), nullptr) {}
  std::string_view Evaluate(StringValue& work) override {
    int64_t n = TruncInt(number_->Evaluate());
    std::string_view text = text_->Evaluate(work);
    if (n >= static_cast<int64_t>(text.size())) return text;
    if (n <= 0) return {};
    return text.substr(text.size() - static_cast<size_t>(n));
  }
};

class MidFunc final : public StringPart {
 public:
  MidFunc(const KeyToken* key, StringExpPtr text, NumericExpPtr start, NumericExpPtr count)
      : StringPart(key, std::move(text), std::move(start), std::move(count)) {}
  std::string_view Evaluate(StringValue& work) override {
    auto start = static_cast<uint32_t>(TruncInt(number_->Evaluate()));
    uint32_t count = count_ ? static_cast<uint32_t>(TruncInt(count_->Evaluate())) : UINT32_MAX;
    std::string_view text = text_->Evaluate(work);
    if (start == 0) {
      SetRunError(err::kSubstringOutOfBounds);
      return {};
    }
    if (start > text.size()) return {};
    return text.substr(start - 1, std::min<size_t>(count, text.size()));
  }
};

}  // namespace

NumericExpPtr MakeStringArgFunction(const KeyToken* key, StringExpPtr first, StringExpPtr second) {
  switch (key->Code()) {
    case tok::kFnDec:
      return std::make_unique<DecFunc>(key, std::move(first));
    case tok::kFnLen:
      return std::make_unique<LenFunc>(key, std::move(first));
    case tok::kFnNum:
      return std::make_unique<NumFunc>(key, std::move(first));
    case tok::kFnPos:
      return std::make_unique<PosFunc>(key, std::move(first), std::move(second));
    default:
      return nullptr;
  }
}

StringExpPtr MakeStringFunction(const KeyToken* key, StringExpPtr text, NumericExpPtr number,
                                NumericExpPtr count) {
  switch (key->Code()) {
    case tok::kFnUps:
      return std::make_unique<UpsFunc>(key, std::move(text));
    case tok::kFnChr:
      return std::make_unique<ChrFunc>(key, std::move(number));
    case tok::kFnDecStr:
      return std::make_unique<DecStrFunc>(key, std::move(number));
    case tok::kFnLeft:
      return std::make_unique<LeftFunc>(key, std::move(text), std::move(number));
    case tok::kFnRight:
      return std::make_unique<RightFunc>(key, std::move(text), std::move(number));
    case tok::kFnMid:
      return std::make_unique<MidFunc>(key, std::move(text), std::move(number), std::move(count));
    default:
      return nullptr;
  }
}
