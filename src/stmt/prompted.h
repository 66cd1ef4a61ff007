// A statement that asks with the prompt typed before its targets: INPUT and
// LINPUT wrap their plain form in this, so the prompt costs nothing when absent.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "lex/tokenizer.h"

template <class Base>
class Prompted final : public Base {
 public:
  template <class... Args>
  explicit Prompted(std::string_view prompt, Args&&... args)
      : Base(std::forward<Args>(args)...), prompt_(prompt) {}
  size_t Size() const override { return Base::Size() + prompt_.size(); }

 protected:
  const char* Prompt() const override { return prompt_.c_str(); }
  void ListPrompt(std::string& out) const override {
    ListStringLiteral(out, prompt_);
    out += ',';
  }

 private:
  std::string prompt_;  // as typed, without its quotes
};
