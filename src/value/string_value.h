// The string value: a private text buffer whose capacity moves in steps of 32.
#pragma once
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

// memcpy and memmove with a null source are undefined even for no bytes, and an
// empty string_view may carry a null pointer.
inline void CopyChars(char* to, std::string_view from) {
  if (!from.empty()) std::memmove(to, from.data(), from.size());
}

// The longest string: a longer result raises "String overflow".
inline constexpr uint32_t kMaxStringLength = 0x7FFFFFF;

class StringValue {
 public:
  // The smallest multiple of 32 above a length: every buffer keeps room for its NUL.
  static uint32_t CapacityFor(uint64_t length) {
    return static_cast<uint32_t>((length + 32) & ~uint64_t{31});
  }

  StringValue() : data_(new char[32]()), capacity_(32) {}
  StringValue(const StringValue& other) : StringValue() { Assign(other.View()); }
  StringValue& operator=(const StringValue& other) {
    if (this != &other) Assign(other.View());
    return *this;
  }

  // Exchanges two values without copying their characters.
  void Swap(StringValue& other) noexcept {
    data_.swap(other.data_);
    std::swap(length_, other.length_);
    std::swap(capacity_, other.capacity_);
  }

  uint32_t Length() const { return length_; }
  uint32_t Capacity() const { return capacity_; }
  const char* Data() const { return data_.get(); }
  char* Data() { return data_.get(); }
  std::string_view View() const { return {data_.get(), length_}; }

  // Whole assignment: the buffer is resized to exactly the capacity the new
  // length asks for, so strings shrink as well as grow.
  void Assign(std::string_view text) {
    uint32_t capacity = CapacityFor(text.size());
    if (capacity != capacity_) {
      std::unique_ptr<char[]> fresh(new char[capacity]());
      CopyChars(fresh.get(), text);
      data_ = std::move(fresh);
      capacity_ = capacity;
    } else {
      CopyChars(data_.get(), text);
    }
    SetLength(static_cast<uint32_t>(text.size()));
  }
  // Work-buffer operations for temporaries: they keep the larger buffer.
  void Clear() { SetLength(0); }
  void Append(std::string_view text) {
    Reserve(uint64_t{length_} + text.size());
    CopyChars(data_.get() + length_, text);
    SetLength(length_ + static_cast<uint32_t>(text.size()));
  }
  void Append(char c) {
    Reserve(uint64_t{length_} + 1);
    data_[length_] = c;
    SetLength(length_ + 1);
  }
  void AppendBlanks(uint32_t count) {
    Reserve(uint64_t{length_} + count);
    std::memset(data_.get() + length_, ' ', count);
    SetLength(length_ + count);
  }
  // Makes room for length characters, keeping the text.
  void Reserve(uint64_t length) {
    if (length < capacity_) return;
    uint32_t capacity = CapacityFor(length);
    std::unique_ptr<char[]> grown(new char[capacity]());
    std::memcpy(grown.get(), data_.get(), uint64_t{length_} + 1);
    data_ = std::move(grown);
    capacity_ = capacity;
  }
  // Sets the length inside the buffer and writes the terminating NUL.
  void SetLength(uint32_t length) {
    length_ = length;
    data_[length] = '\0';
  }

 private:
  std::unique_ptr<char[]> data_;
  uint32_t length_ = 0;
  uint32_t capacity_;
};
