// libFuzzer target: any bytes as a picture size and a path of MOVETO and LINETO
// to any 32-bit positions. Every pixel written lies inside the picture (the
// sanitizers see any other), the pen ends where it was sent, and a line costs
// its visible part only, so a run never takes long.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "gdi/bitmap.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  auto picture = Bitmap::Create(data[0] % 64 + 1, data[1] % 64 + 1);
  for (size_t at = 2; at + 9 <= size; at += 9) {
    int32_t x, y;
    std::memcpy(&x, data + at + 1, 4);
    std::memcpy(&y, data + at + 5, 4);
    if (data[at] & 1) {
      picture->MoveTo(x, y);
    } else {
      picture->SetPen(data[at], data[at] >> 1, data[at] >> 2);
      picture->LineTo(x, y);
    }
    if (picture->X() != x || picture->Y() != y) std::abort();
  }
  return 0;
}
