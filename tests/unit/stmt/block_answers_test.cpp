// Every block statement that ends or divides a block, met by every block
// search: the link's verdict for "opener, closer" programs, cell by cell.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "test_program.h"

namespace {

// The lines that start each search, numbered from 10; the closer is line 20.
const char* const kOpeners[][2] = {
    {"10 FOR I=1 TO 2", nullptr}, {"10 IF X THEN", nullptr}, {"10 IF X THEN", "15 ELSE"},
    {"10 WHILE X", nullptr},      {"10 REPEAT", nullptr},    {"10 SELECT X", nullptr},
    {"10 SELECT X", "15 CASE 1"}, {"10 SELECT X$", nullptr}, {"10 SELECT X$", "15 CASE \"A\""},
};
const char* const kClosers[] = {"20 NEXT I",     "20 NEXT",      "20 UNTIL X",
                                "20 ELSE",       "20 ENDIF",     "20 CASE 1",
                                "20 CASE \"A\"", "20 CASE ELSE", "20 ENDSELECT"};

std::string Verdict(const char* const (&opener)[2], const char* closer) {
  auto prog = opener[1] ? test_program::Build({opener[0], opener[1], closer})
                        : test_program::Build({opener[0], closer});
  ErrorCode code = Link(*prog);
  char out[32];
  std::snprintf(out, sizeof out, "%u@%u", code, code ? loc::Number(g_err.location) : 0);
  ClearError();
  return out;
}

// "code@line" of the first link error, or "0@0" when the program links. Rows
// follow kOpeners, columns kClosers.
const char* const kVerdicts[][9] = {
    {"0@0", "82@20", "87@20", "110@20", "114@20", "96@20", "96@20", "96@20", "103@20"},
    {"106@10", "106@10", "106@10", "106@20", "0@0", "99@20", "99@20", "99@20", "106@10"},
    {"80@20", "80@20", "86@20", "104@20", "0@0", "99@20", "99@20", "99@20", "102@20"},
    {"76@20", "0@0", "85@20", "108@20", "112@20", "97@20", "97@20", "97@20", "100@20"},
    {"79@20", "79@20", "0@0", "109@20", "113@20", "98@20", "98@20", "98@20", "101@20"},
    {"81@20", "81@20", "88@20", "111@20", "115@20", "90@10", "94@20", "90@10", "91@20"},
    {"81@20", "81@20", "88@20", "111@20", "115@20", "90@10", "94@20", "90@10", "0@0"},
    {"81@20", "81@20", "88@20", "111@20", "115@20", "95@20", "90@10", "90@10", "91@20"},
    {"81@20", "81@20", "88@20", "111@20", "115@20", "95@20", "90@10", "90@10", "0@0"},
};

TEST(BlockAnswers, EveryCloserAgainstEverySearch) {
  for (size_t i = 0; i < std::size(kOpeners); ++i)
    for (size_t j = 0; j < std::size(kClosers); ++j)
      EXPECT_EQ(Verdict(kOpeners[i], kClosers[j]), kVerdicts[i][j])
          << kOpeners[i][0] << (kOpeners[i][1] ? " / " : "")
          << (kOpeners[i][1] ? kOpeners[i][1] : "") << " / " << kClosers[j];
}

}  // namespace
