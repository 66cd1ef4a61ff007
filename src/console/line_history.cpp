#include "console/line_history.h"

void LineHistory::Add(std::string_view line) {
  if (line.empty() || (!lines_.empty() && lines_.back() == line)) return;
  if (lines_.size() == kMaxLines) lines_.pop_front();
  lines_.emplace_back(line);
}
