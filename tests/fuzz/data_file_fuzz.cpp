// Fuzzes the data file reader: the input is a file's bytes. Opening must
// refuse what is not a sound data file, and every record of one that opens is
// walked item by item, serially and through the unit's pointer, without reading
// outside the file or the record buffer.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/errors.h"
#include "files/data_file.h"
#include "files/file_units.h"

namespace {

// One scratch file per process, rewritten for each input.
const std::string& ScratchPath() {
  static const std::string path = [] {
    char tmpl[] = "/tmp/fuzz_data_file_XXXXXX";
    int fd = mkstemp(tmpl);
    if (fd >= 0) close(fd);
    return std::string(tmpl);
  }();
  return path;
}

// Touches every byte of an item, so a read outside the buffer is seen.
volatile uint32_t g_sink;
void Touch(const FileItem& item) {
  uint32_t sum;  // the number's bits: a damaged file may hold a NaN
  std::memcpy(&sum, &item.number, sizeof sum);
  for (char c : item.text) sum += static_cast<unsigned char>(c);
  g_sink = sum;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string& path = ScratchPath();
  if (FILE* f = std::fopen(path.c_str(), "wb")) {
    if (size) std::fwrite(data, 1, size, f);
    std::fclose(f);
  }
  DataFile file;
  OpenStatus status = file.Open(path, true);
  if (status == OpenStatus::kReadOnly) {
    for (uint32_t r = 1; r <= file.Records(); ++r) {
      if (!file.Load(r)) break;
      for (uint32_t w = 0;;) {
        FileItem item = file.ItemAt(w);
        Touch(item);
        if (item.kind != FileItem::kNumber && item.kind != FileItem::kString) break;
        w += item.words;
      }
    }
  }
  file.Close();
  // The same walk through a unit: types, then skipping every item there is.
  FileUnit unit;
  if (unit.Open(path, true) == OpenStatus::kReadOnly) {
    g_sink = unit.Type(false) == unit.Type(true);
    uint64_t left = 0;
    unit.Skip(UINT64_MAX, &left);
    g_sink = unit.Record() + unit.Item();
    unit.Close();
  }
  ClearError();
  return 0;
}
