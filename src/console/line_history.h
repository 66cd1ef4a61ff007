// The lines entered so far, oldest first, for the Up and Down keys of the line editor.
#pragma once
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

class LineHistory final {
 public:
  static constexpr size_t kMaxLines = 1000;  // the oldest line goes beyond this

  // Keeps a line unless it is empty or repeats the newest one.
  void Add(std::string_view line);
  size_t Size() const { return lines_.size(); }
  const std::string& At(size_t i) const { return lines_[i]; }

 private:
  std::deque<std::string> lines_;
};
