// The line rasteriser and the picture file, pixel by pixel.
#include "gdi/bitmap.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace {

std::unique_ptr<Bitmap> Picture(uint32_t w, uint32_t h) {
  auto b = Bitmap::Create(w, h);
  EXPECT_TRUE(b);
  return b;
}

// One character per pixel, rows joined by '|': '.' white, 'G' green, 'R' red.
std::string Art(const Bitmap& b) {
  std::string art;
  for (uint32_t y = 0; y < b.Height(); ++y) {
    if (y) art += '|';
    for (uint32_t x = 0; x < b.Width(); ++x) {
      uint32_t p = b.Pixel(x, y);
      art += p == Bitmap::kWhite ? '.' : p == Bitmap::kGreen ? 'G' : p == 0xFF0000 ? 'R' : '?';
    }
  }
  return art;
}

std::string Line(int32_t x0, int32_t y0, int32_t x1, int32_t y1, uint32_t w = 8, uint32_t h = 5) {
  auto b = Picture(w, h);
  b->MoveTo(x0, y0);
  b->LineTo(x1, y1);
  EXPECT_EQ(b->X(), x1);
  EXPECT_EQ(b->Y(), y1);
  return Art(*b);
}

TEST(Bitmap, NewPictureIsWhiteAndRefusesWhatCannotBeHad) {
  auto b = Picture(3, 2);
  EXPECT_EQ(Art(*b), "...|...");
  EXPECT_FALSE(Bitmap::Create(0, 5));
  EXPECT_FALSE(Bitmap::Create(5, 0));
  EXPECT_FALSE(Bitmap::Create(100000, 100000));
  EXPECT_FALSE(Bitmap::Create(UINT32_MAX, UINT32_MAX));
  EXPECT_TRUE(Bitmap::Create(1, 1));
}

TEST(Bitmap, StraightLinesLeaveOutTheirEndPixel) {
  EXPECT_EQ(Line(1, 1, 5, 1), "........|.GGGG...|........|........|........");  // right
  EXPECT_EQ(Line(5, 1, 1, 1), "........|..GGGG..|........|........|........");  // left
  EXPECT_EQ(Line(2, 0, 2, 3), "..G.....|..G.....|..G.....|........|........");  // down
  EXPECT_EQ(Line(2, 4, 2, 1), "........|........|..G.....|..G.....|..G.....");  // up
  EXPECT_EQ(Line(3, 2, 3, 2), "........|........|........|........|........");  // nothing
  EXPECT_EQ(Line(0, 0, 1, 0), "G.......|........|........|........|........");  // one pixel
}

TEST(Bitmap, DiagonalsInFourDirections) {
  EXPECT_EQ(Line(0, 0, 4, 4), "G.......|.G......|..G.....|...G....|........");
  EXPECT_EQ(Line(4, 4, 0, 0), "........|.G......|..G.....|...G....|....G...");
  EXPECT_EQ(Line(4, 0, 0, 4), "....G...|...G....|..G.....|.G......|........");
  EXPECT_EQ(Line(0, 4, 4, 0), "........|...G....|..G.....|.G......|G.......");
}

TEST(Bitmap, ShallowAndSteepLinesRoundHalvesAwayFromTheirStart) {
  // Shallow: two steps down over five across, then the same mirrored.
  EXPECT_EQ(Line(1, 1, 6, 3), "........|.GG.....|...GG...|.....G..|........");
  EXPECT_EQ(Line(6, 3, 1, 1), "........|..G.....|...GG...|.....GG.|........");
  EXPECT_EQ(Line(1, 3, 6, 1), "........|.....G..|...GG...|.GG.....|........");
  EXPECT_EQ(Line(6, 1, 1, 3), "........|.....GG.|...GG...|..G.....|........");
  // Steep: five steps down over two across, in the four other directions.
  EXPECT_EQ(Line(1, 0, 3, 5, 5, 6), ".G...|.G...|..G..|..G..|...G.|.....");
  EXPECT_EQ(Line(3, 5, 1, 0, 5, 6), ".....|.G...|..G..|..G..|...G.|...G.");
  EXPECT_EQ(Line(1, 5, 3, 0, 5, 6), ".....|...G.|..G..|..G..|.G...|.G...");
  EXPECT_EQ(Line(3, 0, 1, 5, 5, 6), "...G.|...G.|..G..|..G..|.G...|.....");
}

TEST(Bitmap, PolylinesGoOnFromTheCurrentPositionInThePensColour) {
  auto b = Picture(6, 4);
  b->MoveTo(1, 0);
  b->LineTo(4, 0);
  b->SetPen(255, 0, 0);
  b->LineTo(4, 3);
  b->LineTo(1, 3);
  b->MoveTo(0, 1);
  b->SetPen(0, 255, 0);
  b->LineTo(0, 3);
  EXPECT_EQ(Art(*b), ".GGGR.|G...R.|G...R.|..RRR.");
  b->SetPen(1, 2, 3);
  b->LineTo(1, 1);
  EXPECT_EQ(b->Pixel(0, 3), 0x010203u);
}

// Lines clipped by a small picture hit exactly the pixels that the same lines
// hit in a picture large enough to hold them whole.
TEST(Bitmap, ClippedLinesKeepTheirPixels) {
  constexpr int kW = 13, kH = 9, kOff = 40;
  std::mt19937 random(7);
  std::uniform_int_distribution<int> coord(-35, 48);
  for (int round = 0; round < 4000; ++round) {
    int x0 = coord(random), y0 = coord(random), x1 = coord(random), y1 = coord(random);
    auto small = Picture(kW, kH);
    auto large = Picture(kW + 2 * kOff, kH + 2 * kOff);
    small->MoveTo(x0, y0);
    small->LineTo(x1, y1);
    large->MoveTo(x0 + kOff, y0 + kOff);
    large->LineTo(x1 + kOff, y1 + kOff);
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x)
        ASSERT_EQ(small->Pixel(x, y), large->Pixel(x + kOff, y + kOff))
            << "line " << x0 << "," << y0 << " to " << x1 << "," << y1 << " at " << x << "," << y;
  }
}

TEST(Bitmap, EveryEdgeClips) {
  EXPECT_EQ(Line(-3, 2, 3, 2), "........|........|GGG.....|........|........");   // left
  EXPECT_EQ(Line(5, 2, 20, 2), "........|........|.....GGG|........|........");   // right
  EXPECT_EQ(Line(1, -9, 1, 2), ".G......|.G......|........|........|........");   // top
  EXPECT_EQ(Line(6, 3, 6, 99), "........|........|........|......G.|......G.");   // bottom
  EXPECT_EQ(Line(-2, -2, 3, 3), "G.......|.G......|..G.....|........|........");  // corner
  EXPECT_EQ(Line(-5, 0, 0, -5), "........|........|........|........|........");  // misses
  EXPECT_EQ(Line(9, 6, 12, 2), "........|........|........|........|........");   // beyond
}

TEST(Bitmap, FarCoordinatesCostOnlyTheirVisiblePart) {
  auto start = std::chrono::steady_clock::now();
  auto b = Picture(100, 80);
  b->MoveTo(-1000000000, -1000000000);
  b->LineTo(1000000000, 1000000000);
  for (int i = 0; i < 80; ++i) EXPECT_EQ(b->Pixel(i, i), Bitmap::kGreen) << i;
  EXPECT_EQ(b->Pixel(81, 80 - 1), Bitmap::kWhite);

  b = Picture(100, 80);
  b->MoveTo(-1000000000, 50);
  b->LineTo(1000000000, 50);
  b->MoveTo(30, 1000000000);
  b->LineTo(30, -1000000000);
  for (int x = 0; x < 100; ++x) EXPECT_EQ(b->Pixel(x, 50), Bitmap::kGreen) << x;
  for (int y = 0; y < 80; ++y) EXPECT_EQ(b->Pixel(30, y), Bitmap::kGreen) << y;

  // Steep and shallow from the 32-bit extremes: the minor axis moves halfway.
  b = Picture(10, 10);
  b->MoveTo(0, INT32_MIN);
  b->LineTo(1, INT32_MAX);
  b->MoveTo(INT32_MIN, 3);
  b->LineTo(INT32_MAX, 4);
  for (int y = 0; y < 10; ++y) EXPECT_EQ(b->Pixel(1, y), Bitmap::kGreen) << y;
  for (int y = 0; y < 10; ++y) EXPECT_EQ(b->Pixel(0, y), y == 4 ? Bitmap::kGreen : Bitmap::kWhite);
  for (int x = 0; x < 10; ++x) EXPECT_EQ(b->Pixel(x, 4), Bitmap::kGreen) << x;
  b->MoveTo(INT32_MIN, INT32_MIN);
  b->LineTo(INT32_MAX, INT32_MIN);
  b->LineTo(INT32_MAX, INT32_MAX);
  b->LineTo(INT32_MIN, INT32_MAX);
  b->LineTo(INT32_MIN, INT32_MIN);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(Bitmap, OnePixelPicture) {
  auto b = Picture(1, 1);
  b->MoveTo(0, 0);
  b->LineTo(0, 0);
  EXPECT_EQ(Art(*b), ".");
  b->LineTo(5, 7);
  EXPECT_EQ(Art(*b), "G");
}

TEST(Bitmap, PictureFileIsBinaryPpmTopToBottom) {
  auto b = Picture(3, 2);
  b->SetPen(255, 0, 0);
  b->MoveTo(0, 1);
  b->LineTo(2, 1);
  std::string path = ::testing::TempDir() + "bitmap_test.ppm";
  ASSERT_TRUE(b->WritePpm(path.c_str()));
  std::ifstream in(path, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::string white("\xFF\xFF\xFF"), red("\xFF\x00\x00", 3);
  EXPECT_EQ(bytes, "P6\n3 2\n255\n" + white + white + white + red + red + white);
  std::remove(path.c_str());
  EXPECT_FALSE(b->WritePpm("/nonexistent-folder/x.ppm"));
}

// A link planted where a temporary could be is never followed: the temporary
// is a new file of its own, and no other file changes.
TEST(Bitmap, PictureFileFollowsNoPlantedLink) {
  std::string dir = ::testing::TempDir() + "bitmap_link_" + std::to_string(getpid());
  std::filesystem::create_directories(dir);
  std::string target = dir + "/precious", path = dir + "/gdi1.ppm";
  std::ofstream(target) << "keep";
  std::filesystem::create_symlink(target, path + ".tmp");
  auto b = Picture(2, 2);
  ASSERT_TRUE(b->WritePpm(path.c_str()));
  std::ifstream in(target);
  std::string kept((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(kept, "keep");
  EXPECT_EQ(std::filesystem::file_size(path), 11u + 12u);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), {}), 3);  // no temporary left
  std::filesystem::remove_all(dir);
}

}  // namespace
