// One graphics window as both threads see it. The main thread owns the record
// and draws into its bitmap; the window thread owns the system window. The
// byte flags are their only handshake: each is written by one side and polled
// by the other.
#pragma once
#include <atomic>
#include <cstdint>
#include <memory>

#include "gdi/bitmap.h"

struct WindowRecord final {
  WindowRecord(int slot, uint32_t width, uint32_t height, std::unique_ptr<Bitmap> picture)
      : number(slot), width(width), height(height), bitmap(std::move(picture)) {}

  const int number;              // the GDI number, for the picture file's name
  const uint32_t width, height;  // as requested: the window's size and its largest size
  const std::unique_ptr<Bitmap> bitmap;

  std::atomic<uint8_t> creating{0};  // main waits while the window thread creates or closes it
  // Copies to the screen under way or asked for: the main thread draws only at 0.
  std::atomic<uint8_t> painting{0};
  std::atomic<uint8_t> updatePending{0};  // the last UPDATE's marker is still queued
  std::atomic<uint8_t> open{0};           // the window exists; cleared when the user closes it
  std::atomic<uint8_t> drawing{0};        // main is inside LineTo: a repaint must wait

  // Window thread only: the system window and a surface over the bitmap's pixels.
  void* window = nullptr;
  void* surface = nullptr;
};
