#include "gdi/bitmap.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "platform/host_files.h"

namespace {

using Wide = __int128;  // products of two 33-bit spans, needed only to set a line up

Wide FloorDiv(Wide a, Wide b) {  // b > 0
  Wide q = a / b;
  return (a % b != 0 && a < 0) ? q - 1 : q;
}
Wide CeilDiv(Wide a, Wide b) { return -FloorDiv(-a, b); }

// The steps i (0 <= i < limit) for which start + sign * i lies in [0, size).
void AxisRange(int64_t start, int sign, int64_t size, int64_t* lo, int64_t* hi) {
  if (sign > 0) {
    *lo = std::max(*lo, -start);
    *hi = std::min(*hi, size - 1 - start);
  } else {
    *lo = std::max(*lo, start - (size - 1));
    *hi = std::min(*hi, start);
  }
}

}  // namespace

std::unique_ptr<Bitmap> Bitmap::Create(uint32_t width, uint32_t height) {
  uint64_t count = uint64_t{width} * height;
  if (count == 0 || count > kMaxPixels) return nullptr;
  std::unique_ptr<uint32_t[]> pixels(new (std::nothrow) uint32_t[count]);
  if (!pixels) return nullptr;
  std::fill_n(pixels.get(), count, kWhite);
  return std::unique_ptr<Bitmap>(new Bitmap(width, height, std::move(pixels)));
}

// The pixels of a line are those of its major axis steps i = 0 .. n-1, n being
// the longer span; the minor axis moves m(i) = floor((2*i*minor + n) / (2*n)),
// the nearest pixel with halves rounded away from the start. Clipping solves
// for the steps inside the picture, so a line to 1e9 costs what its visible
// part costs.
void Bitmap::LineTo(int32_t x, int32_t y) {
  const int64_t dx = int64_t{x} - x_, dy = int64_t{y} - y_;
  const int64_t x0 = x_, y0 = y_;
  x_ = x;
  y_ = y;
  const bool xMajor = std::abs(dx) >= std::abs(dy);
  const int64_t n = xMajor ? std::abs(dx) : std::abs(dy);
  const int64_t minor = xMajor ? std::abs(dy) : std::abs(dx);
  if (n == 0) return;
  const int pSign = (xMajor ? dx : dy) > 0 ? 1 : -1;
  const int qSign = (xMajor ? dy : dx) >= 0 ? 1 : -1;
  const int64_t p0 = xMajor ? x0 : y0, q0 = xMajor ? y0 : x0;
  const int64_t pSize = xMajor ? width_ : height_, qSize = xMajor ? height_ : width_;

  int64_t lo = 0, hi = n - 1;
  AxisRange(p0, pSign, pSize, &lo, &hi);
  // The minor offsets that stay inside, then the steps that reach them.
  int64_t mLo = std::numeric_limits<int64_t>::min(), mHi = std::numeric_limits<int64_t>::max();
  AxisRange(q0, qSign, qSize, &mLo, &mHi);
  if (minor == 0) {
    if (mLo > 0 || mHi < 0) return;
  } else {
    Wide first = CeilDiv((2 * Wide{mLo} - 1) * n, 2 * Wide{minor});
    Wide last = CeilDiv((2 * Wide{mHi} + 1) * n, 2 * Wide{minor}) - 1;
    if (first > lo) lo = first > hi ? hi + 1 : static_cast<int64_t>(first);
    if (last < hi) hi = last < lo ? lo - 1 : static_cast<int64_t>(last);
  }
  if (lo > hi) return;

  const Wide start = 2 * Wide{lo} * minor + n;
  int64_t m = static_cast<int64_t>(FloorDiv(start, 2 * Wide{n}));
  int64_t rest = static_cast<int64_t>(start - Wide{m} * 2 * n);  // 0 <= rest < 2n
  const ptrdiff_t pStride = xMajor ? pSign : ptrdiff_t{pSign} * width_;
  const ptrdiff_t qStride = xMajor ? ptrdiff_t{qSign} * width_ : qSign;
  const int64_t px = xMajor ? p0 + pSign * lo : q0 + qSign * m;
  const int64_t py = xMajor ? q0 + qSign * m : p0 + pSign * lo;
  uint32_t* pixels = pixels_.get();
  ptrdiff_t at = py * width_ + px;
  for (int64_t i = lo;;) {
    pixels[at] = pen_;
    if (++i > hi) break;
    at += pStride;
    rest += 2 * minor;
    if (rest >= 2 * n) {
      rest -= 2 * n;
      at += qStride;
    }
  }
}

bool Bitmap::WritePpm(const char* path) const {
  // The temporary is made exclusively, so a link planted in its place is never followed.
  host::Place place;
  if (place.Resolve(path) != 0) return false;
  host::TempFile temp(place);
  if (temp.Create(0666) != 0) return false;
  char header[64];
  int length = std::snprintf(header, sizeof header, "P6\n%u %u\n255\n", width_, height_);
  bool ok = host::WriteAllAt(temp.Descriptor(), header, static_cast<size_t>(length), -1) == 0;
  std::vector<unsigned char> row(size_t{width_} * 3);
  for (uint32_t y = 0; ok && y < height_; ++y) {
    const uint32_t* src = pixels_.get() + size_t{y} * width_;
    for (uint32_t x = 0; x < width_; ++x) {
      row[3 * x] = static_cast<unsigned char>(src[x] >> 16);
      row[3 * x + 1] = static_cast<unsigned char>(src[x] >> 8);
      row[3 * x + 2] = static_cast<unsigned char>(src[x]);
    }
    ok = host::WriteAllAt(temp.Descriptor(), row.data(), row.size(), -1) == 0;
  }
  return ok && temp.ReplaceTarget() == 0;
}
