// Fuzzes the rollback journal a data file's open puts back: the input is the
// journal's bytes, found beside a sound data file whose shape the first two
// bytes choose. Half the inputs are sealed with the right checksum, so that
// the entries themselves are tried. Whatever the journal holds, the file must
// stay a sound data file of its shape, and every record must read without
// reading outside the file or the record buffer.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "base/errors.h"
#include "files/data_file.h"
#include "files/data_journal.h"

namespace {

// One scratch folder per process, its files made again for each input.
const std::string& Folder() {
  static const std::string folder = [] {
    char tmpl[] = "/tmp/fuzz_journal_XXXXXX";
    return std::string(mkdtemp(tmpl) ? tmpl : "/tmp");
  }();
  return folder;
}

void Put16(uint8_t* p, uint32_t v) {
  p[0] = static_cast<uint8_t>(v);
  p[1] = static_cast<uint8_t>(v >> 8);
}

volatile uint32_t g_sink;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  uint32_t words = 1 + data[0], records = 1 + data[1] % 16;
  std::vector<uint8_t> journal(data + 2, data + size);
  if (journal.size() >= data_journal::kHeaderBytes && (data[0] & 1)) {
    // The magic, the file's shape and a checksum that holds: only the entries are fuzzed.
    static const uint8_t kMagic[8] = {0x89, 'B', 'D', 'J', '\r', '\n', 0x1A, '\n'};
    std::memcpy(journal.data(), kMagic, sizeof kMagic);
    Put16(journal.data() + 8, 1);
    Put16(journal.data() + 10, words);
    Put16(journal.data() + 12, records);
    Put16(journal.data() + 14, 0);
    uint32_t payload = static_cast<uint32_t>(journal.size() - data_journal::kHeaderBytes);
    Put16(journal.data() + 20, payload & 0xFFFF);
    Put16(journal.data() + 22, payload >> 16);
    uint64_t sum = data_journal::Checksum(journal.data(), payload);
    for (int i = 0; i < 8; ++i) journal[24 + i] = static_cast<uint8_t>(sum >> (8 * i));
  }
  std::string path = Folder() + "/f";
  unlink(path.c_str());
  if (DataFile::Create(path, records, words) != CreateStatus::kCreated) std::abort();
  if (FILE* f = std::fopen((path + data_journal::kSuffix).c_str(), "wb")) {
    if (!journal.empty()) std::fwrite(journal.data(), 1, journal.size(), f);
    std::fclose(f);
  }
  DataFile file;
  if (file.Open(path, false) != OpenStatus::kReadWrite || file.Words() != words ||
      file.Records() != records)
    std::abort();  // a journal may change records, never the file's shape
  for (uint32_t r = 1; r <= records; ++r) {
    if (!file.Load(r, true)) std::abort();
    for (uint32_t w = 0;;) {
      FileItem item = file.ItemAt(w);
      uint32_t sum = static_cast<uint32_t>(item.text.size());
      for (char c : item.text) sum += static_cast<unsigned char>(c);
      g_sink = sum;
      if (item.kind != FileItem::kNumber && item.kind != FileItem::kString) break;
      w += item.words;
    }
  }
  file.Close();
  ClearError();
  return 0;
}
