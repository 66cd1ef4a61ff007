// Fuzzes the text file reader: the input is a file's bytes, read through a file
// unit by whole lines (LINPUT #) and by items (READ #) in a mix that the first
// byte picks, into string targets of a small and of the longest room and into
// numbers, with TYP between. Nothing may be read outside the buffers, a line
// that does not fit must stay, and the reading must end.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/errors.h"
#include "files/file_units.h"
#include "stmt/targets.h"

namespace {

const std::string& ScratchPath() {
  static const std::string path = [] {
    char tmpl[] = "/tmp/fuzz_text_file_XXXXXX";
    int fd = mkstemp(tmpl);
    if (fd >= 0) close(fd);
    return std::string(tmpl);
  }();
  return path;
}

volatile uint32_t g_sink;

// A target that touches every byte it is given, so a read outside a buffer is seen.
class ProbeTarget final : public Target {
 public:
  ProbeTarget(bool isString, uint32_t room) : isString_(isString), room_(room) {}
  bool IsString() const override { return isString_; }
  uint32_t Room() const override { return room_; }
  void Assign(float value) override {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    g_sink = bits;
  }
  void Assign(std::string_view text) override {
    if (text.size() > room_) __builtin_trap();  // a line too long must not arrive
    uint32_t sum = 0;
    for (char c : text) sum += static_cast<unsigned char>(c);
    g_sink = sum;
  }
  size_t Size() const override { return sizeof *this; }
  void List(std::string&) const override {}

 private:
  bool isString_;
  uint32_t room_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  uint8_t mix = data[0];
  const std::string& path = ScratchPath();
  if (FILE* f = std::fopen(path.c_str(), "wb")) {
    if (size > 1) std::fwrite(data + 1, 1, size - 1, f);
    std::fclose(f);
  }
  FileUnit unit;
  OpenStatus status = unit.Open(path, true);
  if (status != OpenStatus::kText && status != OpenStatus::kTextReadOnly) {
    unit.Close();
    ClearError();
    return 0;
  }
  ProbeTarget shortText(true, 1u + (mix >> 5)), anyText(true, kMaxStringLength), number(false, 0);
  // Every step takes at least a byte, or fails with the bytes left for a target
  // that fits; the number of steps is bounded all the same.
  for (size_t step = 0; step < 4 * size + 8; ++step) {
    unsigned op = (mix >> (step % 4 * 2)) & 3;
    g_sink = static_cast<uint32_t>(unit.Type(false)) + unit.Record() + unit.Item();
    FileUnit::Result r;
    if (op == 0)
      r = unit.ReadLine(anyText);
    else if (op == 1)
      r = unit.ReadLine(shortText);
    else if (op == 2)
      r = unit.Read(anyText, false);
    else
      r = unit.Read(number, false);
    ClearError();
    if (r == FileUnit::kFail) {
      // What failed stays to be read: a whole line always can be.
      r = unit.ReadLine(anyText);
      ClearError();
    }
    if (r == FileUnit::kEnd) break;
  }
  unit.Close();
  ClearError();
  return 0;
}
