// Key sequence decoding, fed through a pipe instead of a terminal.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string_view>
#include <vector>

#include "console/key_source.h"
#include "console/line_editor.h"

namespace {

std::vector<int> Decode(std::string_view bytes) {
  int fds[2];
  EXPECT_EQ(pipe(fds), 0);
  EXPECT_EQ(write(fds[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  close(fds[1]);
  auto keys = MakeTerminalKeys(fds[0]);
  std::vector<int> codes;
  for (int k; (k = keys->WaitKey(50)) != KeySource::kEnd;)
    if (k != KeySource::kNone) codes.push_back(k);
  close(fds[0]);
  return codes;
}

TEST(TerminalKeys, DecodesFunctionAndEditingKeys) {
  std::vector<int> want = {key::kF1,  key::kF3,  key::kF5,    key::kF2, key::kLeft,
                           key::kDel, key::kIns, key::kRight, key::kF4};
  EXPECT_EQ(Decode("\x1bOP\x1bOR\x1b[15~\x1b[12~\x1b[D\x1b[3~\x1b[2~\x1b[C\x1b[[D"), want);
}

TEST(TerminalKeys, PlainBytesEnterEraseAndUnknownSequences) {
  std::vector<int> want = {
      'a', key::kEnter, key::kEnter, key::kBackspace, key::kBackspace, key::kPrefixed,
      'b', 0xE9,        key::kEscape};
  EXPECT_EQ(Decode("a\r\n\x7f\b\x1b[1;5Ab\xe9\x1b"), want);
}

}  // namespace
