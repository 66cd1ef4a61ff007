#include "format/image_format.h"

#include <algorithm>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
bool IsLetter(char c) { return Lower(c) >= 'a' && Lower(c) <= 'z'; }

}  // namespace

// One pass over the text. Open groups are kept on a stack rather than in
// the call stack, so that nesting is bounded only by the text's length.
class ImageFormat::Reader final {
 public:
  Reader(ImageFormat& format, std::string_view text) : f_(format), text_(text) {}

  void ReadAll() {
    if (text_.size() > kMaxText) {
      Fail(err::kBadFormatChar);
      return;
    }
    ReadEnding();
    for (;;) {
      SkipBlanks();
      if (AtEnd()) {
        // Unclosed groups close at the end of the text.
        while (!open_.empty()) CloseGroup();
        Emit({FormatItem::kEnd});
        return;
      }
      if (!open_.empty() && Peek() == ')') {
        ++pos_;
        CloseGroup();
      } else {
        Step step = Item();
        if (step == kStop) return;
        if (step == kOpened) continue;  // the group's first item follows its "(" directly
        if (step == kGroupDone) CloseGroup();
      }
      SkipBlanks();
      if (Peek() == ',') ++pos_;
    }
  }

 private:
  // What reading an item leaves to do.
  enum Step { kMore, kOpened, kGroupDone, kStop };

  bool AtEnd() const { return pos_ >= text_.size(); }
  char Peek() const { return AtEnd() ? '\0' : text_[pos_]; }
  void SkipBlanks() {
    while (Peek() == ' ') ++pos_;
  }
  void Emit(const FormatItem& item) { f_.items_.push_back(item); }
  Step Fail(ErrorCode code) {
    Emit({FormatItem::kError, 0, 0, -1, code});
    return kStop;
  }

  // "#" no ending, "+" carriage return only, "-" line feed only; one comma after it.
  void ReadEnding() {
    SkipBlanks();
    switch (Peek()) {
      case '#':
        f_.ending_ = kNone;
        break;
      case '+':
        f_.ending_ = kCr;
        break;
      case '-':
        f_.ending_ = kLf;
        break;
      default:
        return;
    }
    ++pos_;
    SkipBlanks();
    if (Peek() == ',') ++pos_;
  }

  // Decimal digits, saturating at limit.
  uint32_t Number(uint32_t limit) {
    uint32_t value = 0;
    while (IsDigit(Peek())) {
      value = std::min<uint32_t>(value * 10 + static_cast<uint32_t>(text_[pos_] - '0'), limit);
      ++pos_;
    }
    return value;
  }

  Step Item() {
    char c = Peek();
    if (IsDigit(c)) {
      size_t start = pos_;
      uint32_t count = Number(1000);
      if (Peek() == '(') return OpenGroup(count);
      pos_ = start;
      return Field();
    }
    if (c == '(') return Fail(err::kMissingReplicator);
    if (c == '"' || c == '\'') return Literal();
    if (c == '/') {
      ++pos_;
      Emit({FormatItem::kNewLine});
      return kMore;
    }
    return Field();
  }

  // count "(": the group's items follow, up to its ")".
  Step OpenGroup(uint32_t count) {
    if (count < 1 || count > 255) return Fail(err::kBadReplicator);
    ++pos_;
    open_.push_back(static_cast<uint32_t>(f_.items_.size()));
    Emit({FormatItem::kGroup, 0, 0, -1, count});
    return kOpened;
  }

  void CloseGroup() {
    uint32_t open = open_.back();
    open_.pop_back();
    f_.items_[open].partner = static_cast<uint32_t>(f_.items_.size());
    Emit({FormatItem::kGroupEnd, 0, 0, -1, 0, open});
  }

  // Quoted pieces and 'code characters, blanks between them.
  Step Literal() {
    auto start = static_cast<uint32_t>(f_.pool_.size());
    for (;;) {
      char c = Peek();
      if (c == '"') {
        size_t close = text_.find('"', pos_ + 1);
        if (close == std::string_view::npos) return Fail(err::kBadLiteral);
        std::string_view piece = text_.substr(pos_ + 1, close - pos_ - 1);
        if (piece.find('\n') != std::string_view::npos) return Fail(err::kBadLiteral);
        f_.pool_ += piece;
        pos_ = close + 1;
      } else if (c == '\'') {
        ++pos_;
        if (!IsDigit(Peek())) return Fail(err::kBadLiteral);
        uint32_t code = Number(256);
        if (code > 255) return Fail(err::kBadLiteral);
        f_.pool_ += static_cast<char>(code);
      } else {
        break;
      }
      size_t after = pos_;
      SkipBlanks();
      if (Peek() != '"' && Peek() != '\'') pos_ = after;
    }
    Emit({FormatItem::kLiteral, 0, 0, -1, start, static_cast<uint32_t>(f_.pool_.size()) - start});
    return kMore;
  }

  // Flags "-", "s", "0" in this order, width, "." precision, conversion letter.
  Step Field() {
    FormatItem item{FormatItem::kNumeric};
    if (Peek() == '-') item.flags |= FormatItem::kLeft, ++pos_;
    if (Lower(Peek()) == 's') item.flags |= FormatItem::kSign, ++pos_;
    if (Peek() == '0') item.flags |= FormatItem::kZero, ++pos_;
    if (Peek() == '*') {
      ++pos_;
    } else {
      item.width = static_cast<int16_t>(std::max<uint32_t>(Number(32767), 1));
    }
    if (Peek() == '.') {
      ++pos_;
      if (Peek() == '*')
        ++pos_;
      else
        item.precision = static_cast<int16_t>(Number(32767));
    }
    switch (Lower(Peek())) {
      case 'd':
      case 'e':
        break;
      case 'a':
        item.kind = FormatItem::kString;
        break;
      case 'x':
        item.kind = FormatItem::kBlanks;
        break;
      default:
        if (!AtEnd() && !IsLetter(Peek())) return Fail(err::kBadFormatChar);
        // Another letter, or the end of the text, ends this run of the format.
        if (open_.empty()) {
          Emit({FormatItem::kEnd});
          return kStop;
        }
        SkipGroupRest();
        return kGroupDone;
    }
    ++pos_;
    Emit(item);
    return kMore;
  }

  // Passes over the rest of a group whose run ended early, up to its ")":
  // nested parentheses are counted, quoted text is passed whole.
  void SkipGroupRest() {
    int depth = 0;
    while (!AtEnd()) {
      char c = text_[pos_++];
      if (c == '"') {
        size_t close = text_.find('"', pos_);
        pos_ = close == std::string_view::npos ? text_.size() : close + 1;
      } else if (c == '(') {
        ++depth;
      } else if (c == ')' && depth-- == 0) {
        break;
      }
    }
  }

  ImageFormat& f_;
  std::string_view text_;
  size_t pos_ = 0;
  std::vector<uint32_t> open_;  // the kGroup items of the groups not yet closed
};

void ImageFormat::Compile(std::string_view text) {
  items_.clear();
  pool_.clear();
  ending_ = kCrLf;
  Reader(*this, text).ReadAll();
}
