// One try at reading the tokens one way. A failed attempt gives back every
// token it read and keeps the first error stored, so that the caller can try
// another reading from the same place, or report the most specific error.
#pragma once
#include <cstddef>

#include "base/errors.h"
#include "lex/tokenizer.h"

class ParseAttempt final {
 public:
  explicit ParseAttempt(Tokenizer& tokens) : tokens_(tokens), start_(tokens.Mark()) {}
  ParseAttempt(const ParseAttempt&) = delete;
  ParseAttempt& operator=(const ParseAttempt&) = delete;

  // Gives the tokens back; stores code unless an error is stored already
  // (0 stores nothing). Null, for "return attempt.Fail(...)".
  std::nullptr_t Fail(ErrorCode code = 0) {
    tokens_.Restore(start_);
    if (code && !g_err.parse) SetParseError(code);
    return nullptr;
  }
  // Gives the tokens back and stores code over any error stored: for sites
  // whose own error says more than what failed inside them.
  std::nullptr_t Replace(ErrorCode code) {
    tokens_.Restore(start_);
    SetParseError(code);
    return nullptr;
  }
  // Gives the tokens back, for another reading; the error stays as it is.
  void Rewind() { tokens_.Restore(start_); }

 private:
  Tokenizer& tokens_;
  size_t start_;
};
