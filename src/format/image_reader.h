// What both format grammars read alike: the line ending, literals, replicated
// groups and the item list they fill. The readers of image_format.cpp and
// classic_image.cpp build on it; nothing else includes it.
#pragma once
#include <algorithm>

#include "format/image_format.h"

// One pass over the text. Open groups are kept on a stack rather than in
// the call stack, so that nesting is bounded only by the text's length.
class ImageFormat::ReaderBase {
 protected:
  // What reading an item leaves to do.
  enum Step { kMore, kOpened, kGroupDone, kStop };

  ReaderBase(ImageFormat& format, std::string_view text) : f_(format), text_(text) {}

  static bool IsDigit(char c) { return c >= '0' && c <= '9'; }
  static char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
  static bool IsLetter(char c) { return Lower(c) >= 'a' && Lower(c) <= 'z'; }

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

  ImageFormat& f_;
  std::string_view text_;
  size_t pos_ = 0;
  std::vector<uint32_t> open_;  // the kGroup items of the groups not yet closed
};
