// The graphics window slots (GDI numbers 1 to 39) and what the eight graphics
// statements do to them. Process-wide: windows outlive a run until the next
// link pass closes them. Arguments arrive rounded; every operation returns 0
// or the error code the statement raises.
#pragma once
#include <cstdint>

#include "base/errors.h"

class Bitmap;

namespace gdi {

constexpr int32_t kFirst = 1, kLast = 39;

ErrorCode Window(int32_t n, int32_t width, int32_t height);
ErrorCode Close(int32_t n);
ErrorCode Color(int32_t n, int32_t red, int32_t green, int32_t blue);
ErrorCode MoveTo(int32_t n, int32_t x, int32_t y);
ErrorCode LineTo(int32_t n, int32_t x, int32_t y);
ErrorCode Update(int32_t n);
ErrorCode Show(int32_t n);
ErrorCode Hide(int32_t n);

// Closes every window and frees every slot (the link pass).
void CloseAll();
// Closes every window and stops the window thread (BYE, the end of a
// command-line run). A later WINDOW starts it again.
void Shutdown();

// For tests: the picture of an open slot, or null.
const Bitmap* PictureOf(int32_t n);
// For tests: closes every window, then keeps windows headless (as without a
// display) or lets the next WINDOW try the display again.
void SetHeadless(bool on);
// For tests: true while the window thread runs.
bool ThreadRunning();
// For tests: as if the user closed window n (it must be open).
void SimulateUserClose(int32_t n);

}  // namespace gdi
