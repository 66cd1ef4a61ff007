#include <algorithm>

#include "console/console_backend.h"

MemoryBackend::MemoryBackend(int cols, int rows, uint16_t attr)
    : cols_(cols),
      rows_(rows),
      attr_(attr),
      cells_(static_cast<size_t>(cols) * rows, Cell{' ', attr}) {}

void MemoryBackend::Size(int* cols, int* rows) {
  *cols = cols_;
  *rows = rows_;
}

void MemoryBackend::Draw(int x, int y, char c, uint16_t attr) {
  cells_[static_cast<size_t>(y) * cols_ + x] = Cell{c, attr};
}

void MemoryBackend::Fill(int x, int y, long count, uint16_t attr, bool setAttr) {
  size_t from = static_cast<size_t>(y) * cols_ + x;
  size_t to = std::min(cells_.size(), from + static_cast<size_t>(count));
  for (size_t i = from; i < to; ++i) {
    cells_[i].ch = ' ';
    if (setAttr) cells_[i].attr = attr;
  }
}

void MemoryBackend::ScrollUp(uint16_t attr) {
  std::copy(cells_.begin() + cols_, cells_.end(), cells_.begin());
  std::fill(cells_.end() - cols_, cells_.end(), Cell{' ', attr});
}

std::string MemoryBackend::Row(int y) const {
  std::string s;
  for (int x = 0; x < cols_; ++x) s += At(x, y).ch;
  s.erase(s.find_last_not_of(' ') + 1);
  return s;
}
