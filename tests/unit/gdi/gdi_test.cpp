// The window slots and the statements' checks, headless and through the
// window thread (SDL's dummy video driver stands in for a display).
#include "gdi/gdi.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>

#include "gdi/bitmap.h"

namespace {

class GdiTest : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    threaded_ = GetParam();
#if !HAVE_SDL2
    if (threaded_) {
      GTEST_SKIP() << "built without SDL2";
    }
#endif
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    gdi::SetHeadless(!threaded_);
  }
  void TearDown() override {
    gdi::SetHeadless(false);
    unsetenv("BASIC_GDI_DUMP");
  }
  bool threaded_ = false;
};

TEST_P(GdiTest, WindowChecksNumberThenSlotThenSize) {
  EXPECT_EQ(gdi::Window(0, 10, 10), 2501u);
  EXPECT_EQ(gdi::Window(40, 0, 0), 2501u);
  EXPECT_EQ(gdi::Window(INT32_MIN, 10, 10), 2501u);
  [[maybe_unused]] auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(gdi::Window(1, 10, 10), 0u);
#if !defined(__SANITIZE_ADDRESS__)
  // Milliseconds on a quiet machine; the bound leaves room for a busy one, and
  // under the sanitizers SDL's start-up alone can take longer still.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
#endif
  EXPECT_EQ(gdi::ThreadRunning(), threaded_);
  EXPECT_EQ(gdi::Window(1, 0, 0), 2502u);
  EXPECT_EQ(gdi::Window(2, 0, 100), 1014u);
  EXPECT_EQ(gdi::Window(2, 100, -1), 1014u);
  EXPECT_EQ(gdi::Window(2, 100000, 100000), 3u);
  EXPECT_EQ(gdi::Window(2, INT32_MAX, INT32_MAX), 3u);
  EXPECT_EQ(gdi::Window(2, 1, 1), 0u);
  EXPECT_EQ(gdi::LineTo(2, 5, 5), 0u);
  EXPECT_EQ(gdi::PictureOf(2)->Pixel(0, 0), Bitmap::kGreen);
}

TEST_P(GdiTest, OtherStatementsCheckNumberThenOpenThenArguments) {
  EXPECT_EQ(gdi::Color(0, 999, 0, 0), 2501u);
  EXPECT_EQ(gdi::Color(3, 999, 0, 0), 2503u);
  EXPECT_EQ(gdi::Close(3), 2503u);
  EXPECT_EQ(gdi::Close(-1), 2501u);
  EXPECT_EQ(gdi::MoveTo(39, 0, 0), 2503u);
  EXPECT_EQ(gdi::LineTo(39, 0, 0), 2503u);
  EXPECT_EQ(gdi::Update(39), 2503u);
  EXPECT_EQ(gdi::Show(39), 2503u);
  EXPECT_EQ(gdi::Hide(40), 2501u);
  ASSERT_EQ(gdi::Window(3, 4, 4), 0u);
  EXPECT_EQ(gdi::Color(3, 256, 0, 0), 1014u);
  EXPECT_EQ(gdi::Color(3, 0, -1, 0), 1014u);
  EXPECT_EQ(gdi::Color(3, 0, 0, INT32_MIN), 1014u);
  EXPECT_EQ(gdi::Color(3, 255, 0, 255), 0u);
  EXPECT_EQ(gdi::LineTo(3, 2, 0), 0u);
  EXPECT_EQ(gdi::PictureOf(3)->Pixel(1, 0), 0xFF00FFu);
  EXPECT_EQ(gdi::Close(3), 0u);
  EXPECT_EQ(gdi::Close(3), 2503u);
}

TEST_P(GdiTest, ThirtyNineWindowsAndTheLinkPassClosesThemAll) {
  for (int n = 1; n <= 39; ++n) ASSERT_EQ(gdi::Window(n, 8 + n, 8), 0u) << n;
  for (int n = 1; n <= 39; ++n) {
    ASSERT_EQ(gdi::MoveTo(n, 0, n % 8), 0u);
    ASSERT_EQ(gdi::LineTo(n, 100, n % 8), 0u);
    ASSERT_EQ(gdi::Update(n), 0u);
  }
  EXPECT_EQ(gdi::PictureOf(39)->Width(), 47u);
  gdi::CloseAll();
  for (int n = 1; n <= 39; ++n) EXPECT_EQ(gdi::PictureOf(n), nullptr) << n;
  EXPECT_EQ(gdi::Window(39, 5, 5), 0u);
}

TEST_P(GdiTest, AWindowTheUserClosedFreesItsSlotAndFailsOnce) {
  ASSERT_EQ(gdi::Window(7, 20, 20), 0u);
  gdi::SimulateUserClose(7);
  EXPECT_EQ(gdi::Window(7, 20, 20), 2502u);  // the slot is taken until a statement sees it
  EXPECT_EQ(gdi::LineTo(7, 3, 3), 2503u);
  EXPECT_EQ(gdi::PictureOf(7), nullptr);
  EXPECT_EQ(gdi::LineTo(7, 3, 3), 2503u);
  EXPECT_EQ(gdi::Window(7, 20, 20), 0u);
  EXPECT_EQ(gdi::Update(7), 0u);
}

TEST_P(GdiTest, UpdateWritesThePictureFile) {
  std::string folder = ::testing::TempDir();
  setenv("BASIC_GDI_DUMP", folder.c_str(), 1);
  std::string path = folder + "/gdi12.ppm";
  std::remove(path.c_str());
  ASSERT_EQ(gdi::Window(12, 3, 1), 0u);
  EXPECT_EQ(gdi::LineTo(12, 1, 0), 0u);
  EXPECT_FALSE(std::ifstream(path).good());  // drawing alone writes nothing
  EXPECT_EQ(gdi::Update(12), 0u);
  EXPECT_EQ(gdi::Show(12), 0u);
  EXPECT_EQ(gdi::Hide(12), 0u);
  std::ifstream in(path, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(bytes, std::string("P6\n3 1\n255\n\x00\xFF\x00\xFF\xFF\xFF\xFF\xFF\xFF", 20));
  std::remove(path.c_str());
  setenv("BASIC_GDI_DUMP", "/nonexistent-folder", 1);
  EXPECT_EQ(gdi::Update(12), 0u);  // skipped silently
}

TEST_P(GdiTest, ShutdownStopsTheThreadAndAWindowStartsItAgain) {
  ASSERT_EQ(gdi::Window(1, 30, 30), 0u);
  gdi::Shutdown();
  EXPECT_FALSE(gdi::ThreadRunning());
  EXPECT_EQ(gdi::PictureOf(1), nullptr);
  ASSERT_EQ(gdi::Window(1, 30, 30), 0u);
  EXPECT_EQ(gdi::ThreadRunning(), threaded_);
  for (int i = 0; i < 2000; ++i) {  // UPDATE between lines: drawing waits for each copy
    ASSERT_EQ(gdi::LineTo(1, i % 30, (i * 7) % 30), 0u);
    if (i % 10 == 0) {
      ASSERT_EQ(gdi::Update(1), 0u);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, GdiTest, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "Threaded" : "Headless"; });

}  // namespace
