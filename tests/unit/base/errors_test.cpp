// The error table read through MessageOf, and the names errors.def gives it.
#include "base/errors.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(Errors, MessagesByName) {
  EXPECT_STREQ(MessageOf(err::kBadStmtNumber), "Missing or Invalid Statement Number");
  EXPECT_STREQ(MessageOf(err::kMissingSemicolon), "Missing \";\" delimiter");
  EXPECT_STREQ(MessageOf(err::kBreak), "BREAK");
  EXPECT_EQ(err::kBadStmtNumber, 18u);
  EXPECT_EQ(err::kEnd, 4012u);
  // Two pairs share a text; their codes stay apart.
  EXPECT_STREQ(MessageOf(err::kLetTargetMissing), MessageOf(err::kUnusedAssignTarget));
  EXPECT_STREQ(MessageOf(err::kSubstringGap), MessageOf(err::kUnusedStringGap));
  EXPECT_NE(err::kSubstringGap, err::kUnusedStringGap);
}

TEST(Errors, CodesOutsideTheTableReadOk) {
  for (ErrorCode code : {0u, 19u, 38u, 117u, 4013u, 0xFFFFFFFFu})
    EXPECT_STREQ(MessageOf(code), "OK!") << code;
}

// A row typed with another row's code would hide one of the two messages.
TEST(Errors, EveryRowHasItsOwnCode) {
  std::set<ErrorCode> codes;
  size_t rows = 0;
#define ERR(code, name, message)                   \
  ++rows;                                          \
  EXPECT_TRUE(codes.insert(code).second) << #name; \
  EXPECT_EQ(err::name, ErrorCode{code});           \
  EXPECT_EQ(std::string(MessageOf(code)), message) << #name;
#include "base/errors.def"
#undef ERR
  EXPECT_EQ(rows, 162u);
}

}  // namespace
