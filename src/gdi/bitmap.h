// A graphics window's off-screen picture: 32-bit pixels, a one-pixel pen and
// a current position, drawn only by the interpreter's main thread.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>

class Bitmap final {
 public:
  static constexpr uint32_t kWhite = 0xFFFFFF;  // a new picture's background
  static constexpr uint32_t kGreen = 0x00FF00;  // a new picture's pen
  // Larger pictures are refused as memory that cannot be had (256 MiB of pixels).
  static constexpr uint64_t kMaxPixels = uint64_t{1} << 26;

  // A white picture; null when its pixels cannot be allocated.
  static std::unique_ptr<Bitmap> Create(uint32_t width, uint32_t height);

  uint32_t Width() const { return width_; }
  uint32_t Height() const { return height_; }
  // Rows top to bottom, each Width() pixels of 0x00RRGGBB.
  const uint32_t* Pixels() const { return pixels_.get(); }
  uint32_t Pixel(uint32_t x, uint32_t y) const { return pixels_[size_t{y} * width_ + x]; }

  void SetPen(uint8_t red, uint8_t green, uint8_t blue) {
    pen_ = uint32_t{red} << 16 | uint32_t{green} << 8 | blue;
  }
  void MoveTo(int32_t x, int32_t y) {
    x_ = x;
    y_ = y;
  }
  // Draws from the current position to (x, y), leaving out the end pixel, and
  // moves there. Only the pixels inside the picture are visited.
  void LineTo(int32_t x, int32_t y);
  int32_t X() const { return x_; }
  int32_t Y() const { return y_; }

  // Writes the picture as binary PPM ("P6") to path, through a temporary file
  // renamed over it, so that a reader never sees half a picture.
  bool WritePpm(const char* path) const;

 private:
  Bitmap(uint32_t width, uint32_t height, std::unique_ptr<uint32_t[]> pixels)
      : width_(width), height_(height), pixels_(std::move(pixels)) {}

  uint32_t width_, height_;
  std::unique_ptr<uint32_t[]> pixels_;
  uint32_t pen_ = kGreen;
  int32_t x_ = 0, y_ = 0;  // the current position, anywhere in the plane
};
