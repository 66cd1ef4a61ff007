// The keyword table: statement keywords, secondary keywords, built-in
// functions and operator words, hashed by first letter.
#pragma once
#include <cstddef>
#include <string_view>
#include <vector>

#include "lex/token.h"

// A word with a fixed meaning; variables are VarTokens with the same interface.
class KeyToken {
 public:
  virtual ~KeyToken() = default;
  virtual TokenCode Code() const = 0;
  virtual const char* Name() const = 0;
};

struct KeywordRow {
  const char* name;
  TokenCode code;
};

// A keyword entry; refers to its static row.
class BasicToken final : public KeyToken {
 public:
  explicit BasicToken(const KeywordRow& row) : row_(row) {}
  TokenCode Code() const override { return row_.code; }
  const char* Name() const override { return row_.name; }

 private:
  const KeywordRow& row_;
};

// Bucket of a name: 0-25 for A-Z by its first character, kOtherBucket for anything else.
constexpr int kOtherBucket = 26;
int BucketOf(std::string_view name);
// Case-insensitive whole-name comparison.
bool SameName(std::string_view a, std::string_view b);

// The keyword entry spelled like word, or null. Built on first use.
const BasicToken* FindKeyword(std::string_view word);
// A statement keyword that is a name everywhere but at a statement's start
// (RANDOMIZE, RANDOM), or null: old programs use such words as variables.
const BasicToken* FindStatementWord(std::string_view word);
// The length of the longest keyword or statement word that text begins with
// (any case), or 0: how the classic switch finds keywords run into names.
size_t KeywordLengthAt(std::string_view text);
// The keyword entry of a code (the first row with it), or null; used for listing.
const char* KeywordName(TokenCode code);
// Every keyword entry, bucket by bucket, then the statement words (for the help tests).
std::vector<const BasicToken*> AllKeywords();
