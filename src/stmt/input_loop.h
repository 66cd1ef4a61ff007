// The typed-input dialogue that INPUT and MAT INPUT share: the prompt, typed
// lines cut into items, and the classic re-type rules.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

class Console;

// The variables a dialogue fills, in order: an INPUT's targets, or the
// elements of MAT INPUT's arrays.
class InputSlots {
 public:
  virtual size_t Count() const = 0;
  virtual bool IsString(size_t i) const = 0;
  virtual void Assign(size_t i, float value) = 0;
  virtual void Assign(size_t i, std::string_view text) = 0;

 protected:
  ~InputSlots() = default;
};

// Prints the prompt and fills the slots from typed lines. An empty line or a
// break ends it early; the end of input raises kFileEnd at location; a storage
// failure of a slot ends it with that error.
void RunInput(Console& con, const char* prompt, InputSlots& slots, uint32_t location);
