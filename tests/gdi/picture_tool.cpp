// Reads the pictures of the graphics tests: the PPM files that UPDATE writes
// and the XWD screenshots that xwd takes of a real window.
//   picture_tool compare EXPECTED.ppm ACTUAL.ppm   0 when equal, else says where
//   picture_tool pixel FILE X Y...                 the colours as RRGGBB, one a line
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

struct Picture {
  uint32_t width = 0, height = 0;
  std::vector<uint32_t> pixels;  // 0xRRGGBB, rows top to bottom
  uint32_t At(uint32_t x, uint32_t y) const { return pixels[size_t{y} * width + x]; }
};

std::string ReadAll(const char* path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

bool ParsePpm(const std::string& b, Picture* p) {
  unsigned w, h, max;
  int used = 0;
  if (std::sscanf(b.c_str(), "P6 %u %u %u%n", &w, &h, &max, &used) != 3 || max != 255) return false;
  size_t at = static_cast<size_t>(used) + 1;  // one blank after maxval
  if (b.size() < at + size_t{w} * h * 3) return false;
  p->width = w;
  p->height = h;
  p->pixels.resize(size_t{w} * h);
  for (size_t i = 0; i < p->pixels.size(); ++i, at += 3)
    p->pixels[i] =
        uint32_t{uint8_t(b[at])} << 16 | uint32_t{uint8_t(b[at + 1])} << 8 | uint8_t(b[at + 2]);
  return true;
}

uint32_t Big32(const std::string& b, size_t at) {
  return uint32_t{uint8_t(b[at])} << 24 | uint32_t{uint8_t(b[at + 1])} << 16 |
         uint32_t{uint8_t(b[at + 2])} << 8 | uint8_t(b[at + 3]);
}

int Shift(uint32_t mask) {
  int s = 0;
  while (mask && !(mask & 1)) mask >>= 1, ++s;
  return s;
}

// X window dumps of 24- or 32-bit true colour, as Xvfb's default screen gives.
bool ParseXwd(const std::string& b, Picture* p) {
  if (b.size() < 100) return false;
  uint32_t f[25];
  for (int i = 0; i < 25; ++i) f[i] = Big32(b, 4 * i);
  uint32_t headerSize = f[0], format = f[2], width = f[4], height = f[5], byteOrder = f[7];
  uint32_t bitsPerPixel = f[11], bytesPerLine = f[12], masks[3] = {f[14], f[15], f[16]};
  uint32_t colours = f[19];
  if (format != 2 || bitsPerPixel != 32) return false;
  size_t at = size_t{headerSize} + size_t{colours} * 12;
  if (b.size() < at + size_t{bytesPerLine} * height) return false;
  p->width = width;
  p->height = height;
  p->pixels.resize(size_t{width} * height);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const char* q = b.data() + at + size_t{y} * bytesPerLine + 4 * size_t{x};
      uint32_t v = 0;
      for (int k = 0; k < 4; ++k) v |= uint32_t{uint8_t(q[byteOrder ? 3 - k : k])} << (8 * k);
      uint32_t rgb = 0;
      for (int c = 0; c < 3; ++c) rgb = rgb << 8 | ((v & masks[c]) >> Shift(masks[c]) & 0xFF);
      p->pixels[size_t{y} * width + x] = rgb;
    }
  return true;
}

bool Load(const char* path, Picture* p) {
  std::string bytes = ReadAll(path);
  bool ok = bytes.compare(0, 2, "P6") == 0 ? ParsePpm(bytes, p) : ParseXwd(bytes, p);
  if (!ok) std::fprintf(stderr, "%s: not a picture this tool reads\n", path);
  return ok;
}

int Compare(const char* expectedPath, const char* actualPath) {
  Picture e, a;
  if (!Load(expectedPath, &e) || !Load(actualPath, &a)) return 2;
  if (e.width != a.width || e.height != a.height) {
    std::printf("size differs: expected %ux%u, got %ux%u\n", e.width, e.height, a.width, a.height);
    return 1;
  }
  size_t differ = 0, first = 0;
  for (size_t i = 0; i < e.pixels.size(); ++i)
    if (e.pixels[i] != a.pixels[i] && differ++ == 0) first = i;
  if (!differ) return 0;
  std::printf("%zu pixels differ; the first at x=%zu y=%zu: expected %06X, got %06X\n", differ,
              first % e.width, first / e.width, e.pixels[first], a.pixels[first]);
  return 1;
}

int Pixels(const char* path, int count, char** coords) {
  Picture p;
  if (!Load(path, &p)) return 2;
  for (int i = 0; i + 1 < count; i += 2) {
    unsigned long x = std::strtoul(coords[i], nullptr, 10),
                  y = std::strtoul(coords[i + 1], nullptr, 10);
    if (x >= p.width || y >= p.height) {
      std::printf("outside\n");
      continue;
    }
    std::printf("%06X\n", p.At(static_cast<uint32_t>(x), static_cast<uint32_t>(y)));
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "compare") == 0) return Compare(argv[2], argv[3]);
  if (argc >= 5 && std::strcmp(argv[1], "pixel") == 0) return Pixels(argv[2], argc - 3, argv + 3);
  std::fprintf(stderr, "usage: picture_tool compare EXPECTED ACTUAL | pixel FILE X Y...\n");
  return 2;
}
