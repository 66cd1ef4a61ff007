#include "format/image_format.h"

#include "format/image_reader.h"

// This language's grammar: flags, width, precision and a letter per field.
class ImageFormat::Reader final : ReaderBase {
 public:
  Reader(ImageFormat& format, std::string_view text) : ReaderBase(format, text) {}

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
};

void ImageFormat::Compile(std::string_view text, Grammar grammar) {
  items_.clear();
  pool_.clear();
  ending_ = kCrLf;
  grammar_ = grammar;
  if (grammar == kClassic)
    ReadClassic(text);
  else
    Reader(*this, text).ReadAll();
}
