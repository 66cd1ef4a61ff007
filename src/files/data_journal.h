// The rollback journal of a data file, NAME.journal beside it: the bytes a
// statement is about to overwrite, written before the records change and
// cleared once they have. A whole journal found later means that a program
// died while writing: its bytes are put back, and every record is as it was
// before that statement.
//
// Layout, little-endian: the magic 89 42 44 4A 0D 0A 1A 0A ("\x89BDJ\r\n\x1a\n"),
// the version 1 (2 bytes), the data file's words per record (2) and records (4),
// the number of entries (4), the payload's length (4), and a 64-bit FNV-1a
// checksum of bytes 8-23 and the payload; then the payload, one entry after
// another: the record (4), the offset of the bytes in it (2), their length (2)
// and the bytes. A cleared journal has a zero magic.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace data_journal {

inline constexpr uint32_t kHeaderBytes = 32;
inline constexpr char kSuffix[] = ".journal";

// The bytes of one entry of a parsed journal, pointing into its buffer.
struct Entry {
  uint32_t record;  // 1-based
  uint32_t offset;  // in the record
  uint32_t length;
  const uint8_t* bytes;
};

// Builds a journal from the old bytes of the places a statement changes.
class Builder final {
 public:
  void Start(uint32_t words, uint32_t records);
  void Add(uint32_t record, uint32_t offset, const uint8_t* bytes, uint32_t length);
  bool Empty() const { return entries_ == 0; }
  // Completes the header: the journal's bytes.
  const std::vector<uint8_t>& Finish();

 private:
  std::vector<uint8_t> bytes_;  // kept from one statement to the next
  uint32_t entries_ = 0;
};

// The entries of a journal's bytes when it is whole and fits a data file of
// words and records (every entry inside one record); false otherwise, cleared
// or torn journals included.
bool Parse(const uint8_t* bytes, size_t size, uint32_t words, uint32_t records,
           std::vector<Entry>* entries);

// The checksum a journal's header carries: of its bytes 8-23, then the payload.
uint64_t Checksum(const uint8_t* journal, size_t payload);

// Reads a journal file whole, up to the largest a statement can write; false
// when it cannot be read or is cleared.
bool ReadJournal(int fd, std::vector<uint8_t>* bytes);

// Marks a journal as done: 0 or errno.
int Clear(int fd);

}  // namespace data_journal
