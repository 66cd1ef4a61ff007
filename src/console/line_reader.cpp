#include <algorithm>
#include <chrono>
#include <cstring>

#include "base/errors.h"
#include "console/console.h"
#include "console/console_backend.h"
#include "console/key_source.h"
#include "console/line_editor.h"
#include "platform/break_flag.h"

void LineEditor::Start(char* line, std::string_view text, bool escapeEnds) {
  line_ = line;
  len_ = 0;
  line_[0] = '\0';
  full_ = false;
  insert_ = false;
  searching_ = 0;
  pos_ = 0;
  anchor_ = 0;
  browse_ = history_.Size();
  escapeEnds_ = escapeEnds;
  abandoned_ = false;
  if (text.empty()) return;
  // The text is typed over its own template, so that Backspace walks back through
  // both and F1, F3 and Del go on from where the changes stop.
  tlen_ = static_cast<int>(std::min(text.size(), size_t{Console::kLineMax}));
  std::memcpy(template_, text.data(), static_cast<size_t>(tlen_));
  while (pos_ < tlen_) CopyOne();
}

void LineEditor::Append(char c) {
  if (len_ < Console::kLineMax) {
    con_.PutPlain(c);
    line_[len_++] = c;
  } else if (!full_) {
    full_ = true;
    con_.PutPlain('\a');
    con_.PutPlain('\b');
  }
}

void LineEditor::CopyOne() {
  if (pos_ >= tlen_) return;
  unsigned char c = static_cast<unsigned char>(template_[pos_]);
  if (c >= 32 && c <= 127) Append(static_cast<char>(c));
  ++pos_;
}

void LineEditor::Erase() {
  if (len_ == 0) return;
  if (full_) {
    con_.PutPlain(' ');
    con_.PutPlain('\b');
    full_ = false;
  }
  --len_;
  con_.Write("\b \b");
  if (pos_ > anchor_) --pos_;
}

void LineEditor::Browse(int step) {
  size_t next = browse_ + static_cast<size_t>(step);
  if ((step < 0 && browse_ == 0) || next > history_.Size()) return;
  // The line being typed is kept while older ones are shown.
  if (browse_ == history_.Size()) draft_.assign(line_, static_cast<size_t>(len_));
  browse_ = next;
  while (len_ > 0) Erase();
  for (char c : browse_ == history_.Size() ? draft_ : history_.At(browse_)) {
    auto k = static_cast<unsigned char>(c);
    if (k >= 32 && k <= 127) Append(c);
    AdvanceTemplate();
  }
}

void LineEditor::Finish(bool keepEmpty) {
  line_[len_] = '\0';
  if (len_ > 0 || keepEmpty) {
    std::memcpy(template_, line_, static_cast<size_t>(len_));
    tlen_ = len_;
  }
}

void LineEditor::Search(int key) {
  int which = searching_;
  searching_ = 0;
  char& last = which == key::kF2 ? lastF2_ : lastF4_;
  char target;
  if (key == which)
    target = last;
  else if (key >= key::kPrefixed || key < 0)
    return;  // another prefixed key cancels the search
  else
    target = static_cast<char>(key);
  last = target;
  int found = -1;
  for (int i = pos_ + 1; i < tlen_; ++i)
    if (template_[i] == target) {
      found = i;
      break;
    }
  if (found < 0) return;
  if (which == key::kF2)
    while (pos_ < found) CopyOne();
  else
    pos_ = found;
}

bool LineEditor::Handle(int k) {
  if (searching_) {
    Search(k);
    return false;
  }
  switch (k) {
    case key::kEnter:
      con_.PutPlain('\n');
      Finish(false);
      history_.Add(std::string_view(line_, static_cast<size_t>(len_)));
      insert_ = false;
      return true;
    case key::kEscape:
      con_.Write("@\n");
      if (escapeEnds_) {
        abandoned_ = true;
        len_ = 0;
        line_[0] = '\0';
        return true;
      }
      len_ = 0;
      insert_ = false;
      pos_ = anchor_ = 0;
      return false;
    case key::kBackspace:
    case key::kLeft:
      Erase();
      return false;
    case key::kUp:
      Browse(-1);
      return false;
    case key::kDown:
      Browse(1);
      return false;
    case key::kF1:
    case key::kRight:
      CopyOne();
      return false;
    case key::kF2:
    case key::kF4:
      searching_ = k;
      return false;
    case key::kF3:
      while (pos_ < tlen_) CopyOne();
      return false;
    case key::kF5:
      con_.Write("@\n");
      Finish(true);
      // The line stays as typed; the copy keys go on after it.
      pos_ = len_;
      anchor_ = 0;
      return false;
    case key::kIns:
      insert_ = !insert_;
      return false;
    case key::kDel:
      if (pos_ < tlen_) ++pos_, ++anchor_;
      return false;
    default:
      break;
  }
  if (k >= 32 && k <= 127) {
    Append(static_cast<char>(k));
    AdvanceTemplate();
  } else if (k >= 0 && k < 256) {
    AdvanceTemplate();  // other controls and 128-255 only move through the template
  }
  return false;
}

void LineEditor::Enter(const char* text, int n) {
  for (int i = 0; i < n; ++i) {
    con_.PutPlain(text[i]);
    line_[i] = text[i];
  }
  len_ = n;
  con_.PutPlain('\n');
  Finish(false);
  history_.Add(std::string_view(line_, static_cast<size_t>(n)));
}

int64_t Console::SteadyMs() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

namespace {
constexpr int kPollMs = 50;
}  // namespace

int Console::ReadLineUntil(char* line, int64_t deadlineMs, std::string_view text, bool escapeEnds) {
  FlushFiles();  // what a program wrote is in its files while it waits for an answer
  // Piped lines come whole: the text is shown on a line of its own, and the line
  // read replaces it.
  if (!text.empty() && in_->DeliversLines()) {
    Write(text);
    PutPlain('\n');
  }
  Flush();
  editor_->Start(line, in_->DeliversLines() ? std::string_view() : text, escapeEnds);
  in_->BeginLine();
  int result;
  for (;;) {
    if (TestAndClearBreak()) {
      SetRunError(err::kBreak);
      result = kBreakRead;
      break;
    }
    int wait = kPollMs;
    if (deadlineMs >= 0) {
      int64_t left = deadlineMs - clock_();
      if (left <= 0) {
        result = kTimedOut;
        break;
      }
      if (left < wait) wait = static_cast<int>(left);
    }
    if (in_->DeliversLines()) {
      int n = in_->WaitLine(line, wait);
      if (n == KeySource::kNone) continue;
      if (n == KeySource::kEnd) {
        result = kEndOfInput;
        break;
      }
      editor_->Enter(line, n);
      result = n;
      break;
    }
    int k = in_->WaitKey(wait);
    if (k == KeySource::kNone) {
      CheckResize();  // a resume after Ctrl+Z: the next echo goes where the cursor now is
      continue;
    }
    if (k == KeySource::kEnd) {
      result = kEndOfInput;
      break;
    }
    if (editor_->Handle(k)) {
      result = editor_->Abandoned() ? kAbandoned : editor_->Length();
      break;
    }
    Flush();
  }
  if (result < 0) line[0] = '\0';
  in_->EndLine();
  Flush();
  return result;
}

int Console::ReadLine(char* line) { return ReadLineUntil(line, -1, {}, false); }

int Console::EditLine(char* line, std::string_view text) {
  return ReadLineUntil(line, -1, text, true);
}

int Console::ReadLineTimed(char* line, unsigned seconds, unsigned* elapsedSeconds) {
  int64_t start = clock_();
  int n = ReadLineUntil(line, start + static_cast<int64_t>(seconds) * 1000, {}, false);
  if (n >= 0 && elapsedSeconds)
    *elapsedSeconds = static_cast<unsigned>((clock_() - start) / 1000 + 1);
  return n;
}
