// The format grammar of the classic switch, as old listings wrote their IMAGE
// lines: fields of D, A and X positions separated by commas ("DDD,2X,DD",
// "3D.D,6D", "S5D", "AA,X,AAA", "DDXDDDXDDD", "6D,AA,SD,5DE").
#include <string>

#include "format/image_reader.h"

class ImageFormat::ClassicReader final : ReaderBase {
 public:
  ClassicReader(ImageFormat& format, std::string_view text) : ReaderBase(format, text) {}

  void ReadAll() {
    if (text_.size() > kMaxText) {
      Fail(err::kBadFormatChar);
      return;
    }
    ReadEnding();
    // A comma follows an item; a field or group needs one after another field
    // or group, while literals and "/" stand with or without.
    enum { kOpen, kAfterField, kAfterFree } state = kOpen;
    for (;;) {
      SkipBlanks();
      if (AtEnd()) {
        while (!open_.empty()) CloseGroup();  // unclosed groups close at the end
        Emit({FormatItem::kEnd});
        return;
      }
      char c = Peek();
      Step step = kMore;
      if (c == ',') {
        if (state == kOpen) step = Fail(err::kBadFormatDelimiter);
        ++pos_;
        state = kOpen;
      } else if (c == ')') {
        if (open_.empty()) return void(Fail(err::kBadFormatChar));
        ++pos_;
        CloseGroup();
        state = kAfterField;
      } else if (c == '/') {
        ++pos_;
        Emit({FormatItem::kNewLine});
        state = kAfterFree;
      } else if (c == '"' || c == '\'') {
        step = Literal();
        state = kAfterFree;
      } else if (state == kAfterField && IsFieldStart(c)) {
        step = Fail(err::kBadFormatDelimiter);
      } else if (c == '(') {
        step = Fail(err::kMissingReplicator);
      } else if (IsDigit(c)) {
        uint32_t count = Number(1000);
        if (Peek() == '(') {
          step = OpenGroup(count);
          state = kOpen;
        } else {
          step = Field(true, count);
          state = kAfterField;
        }
      } else if (IsFieldStart(c)) {
        step = Field(false, 0);
        state = kAfterField;
      } else {
        step = Fail(err::kBadFormatChar);
      }
      if (step == kStop) return;
    }
  }

 private:
  static char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
  static bool IsFieldStart(char c) {
    char u = Upper(c);
    return IsDigit(c) || u == 'D' || u == 'A' || u == 'X' || u == 'S' || u == 'E' || u == '.';
  }

  // The positions of one field, each letter with an optional count before it
  // (the first one's count read by the caller): a picture of D, X, ".", S and
  // a final E; a run of A; or a run of X alone.
  Step Field(bool counted, uint32_t count) {
    std::string positions;  // the picture, kept no longer than any field may be
    uint64_t blanks = 0, text = 0, width = 0;
    int digits = 0, decimals = 0;
    bool point = false, sign = false, exponent = false;
    for (;; counted = false) {
      if (IsDigit(Peek())) count = Number(1000), counted = true;
      // A count past 255 makes the field too wide, which Finish refuses.
      if (counted && count == 0) return Fail(err::kBadReplicator);
      uint32_t n = counted ? count : 1;
      char u = Upper(Peek());
      if (exponent && IsFieldStart(Peek())) return Fail(err::kBadNumberFormat);  // E ends it
      if (counted && u != 'D' && u != 'X' && u != 'A') return Fail(err::kBadFormatChar);
      switch (u) {
        case 'D':
          digits += static_cast<int>(n);
          if (point) decimals += static_cast<int>(n);
          Add(positions, picture::kDigit, n);
          width += n;
          break;
        case 'X':
          blanks += n;
          Add(positions, picture::kBlank, n);
          width += n;
          break;
        case 'A':
          text += n;
          break;
        case 'S':
          // One sign, before the digits; it floats to the first digit printed.
          if (sign || digits || point) return Fail(err::kBadNumberFormat);
          sign = true;
          Add(positions, picture::kSign, 1);
          ++width;
          break;
        case '.':
          if (point) return Fail(err::kBadNumberFormat);
          point = true;
          Add(positions, picture::kPoint, 1);
          ++width;
          break;
        case 'E':
          if (!digits) return Fail(err::kBadNumberFormat);
          exponent = true;
          Add(positions, picture::kExponent, 1);
          width += 4;
          break;
        default:
          return Finish(positions, blanks, text, width, digits, decimals, sign);
      }
      ++pos_;
    }
  }

  static void Add(std::string& positions, char c, uint32_t n) {
    size_t room =
        picture::kMaxWidth + 1 - std::min<size_t>(positions.size(), picture::kMaxWidth + 1);
    positions.append(std::min<size_t>(n, room), c);
  }

  Step Finish(const std::string& positions, uint64_t blanks, uint64_t text, uint64_t width,
              int digits, int decimals, bool sign) {
    if (text) {
      if (width || text > picture::kMaxWidth) return Fail(err::kBadStringFormat);
      auto n = static_cast<int16_t>(text);
      Emit({FormatItem::kString, FormatItem::kLeft, n, n});
      return kMore;
    }
    if (width == blanks) {
      // X alone: blanks, in items no wider than an item holds.
      for (; blanks > 0; blanks -= std::min<uint64_t>(blanks, 32767))
        Emit({FormatItem::kBlanks, 0, static_cast<int16_t>(std::min<uint64_t>(blanks, 32767))});
      return kMore;
    }
    if (!digits || width > picture::kMaxWidth) return Fail(err::kBadNumberFormat);
    auto start = static_cast<uint32_t>(f_.pool_.size());
    f_.pool_ += positions;
    Emit({FormatItem::kPicture, static_cast<uint8_t>(sign ? FormatItem::kSign : 0),
          static_cast<int16_t>(width), static_cast<int16_t>(decimals), start,
          static_cast<uint32_t>(positions.size())});
    return kMore;
  }
};

void ImageFormat::ReadClassic(std::string_view text) { ClassicReader(*this, text).ReadAll(); }
