// The parameter frames of active DEF calls: one stack of numbers and one of
// strings, sized by the link pass so that a call never allocates.
#pragma once
#include <cstddef>
#include <vector>

#include "value/string_value.h"

class CallFrames final {
 public:
  // Where a frame's slots start in each stack.
  struct Frame {
    size_t num = 0, str = 0;
  };
  // What Pop restores: the free top and the active frame before a Push.
  struct Saved {
    Frame top, base;
  };

  // Grows the stacks by one call site's frame; every site is active at most
  // once, so the frames of all sites bound the depth.
  void Reserve(size_t numbers, size_t strings) {
    nums_.resize(nums_.size() + numbers);
    strs_.resize(strs_.size() + strings);
  }
  void Clear() {
    nums_.clear();
    strs_.clear();
    top_ = base_ = Frame{};
  }
  // Leaves every active call at once (a run cut short inside one).
  void Unwind() { top_ = base_ = Frame{}; }
  // True when no call is active.
  bool Idle() const { return top_.num == 0 && top_.str == 0 && base_.num == 0 && base_.str == 0; }

  // Takes a frame above the active one. Its arguments are stored while the
  // caller's frame is still active; Enter then makes it the active one.
  Frame Push(size_t numbers, size_t strings, Saved* saved) {
    *saved = {top_, base_};
    Frame frame = top_;
    top_.num += numbers;
    top_.str += strings;
    return frame;
  }
  void Enter(Frame frame) { base_ = frame; }
  void Pop(const Saved& saved) {
    top_ = saved.top;
    base_ = saved.base;
  }

  float& Number(Frame frame, unsigned slot) { return nums_[frame.num + slot]; }
  StringValue& String(Frame frame, unsigned slot) { return strs_[frame.str + slot]; }
  // A slot of the active frame: a parameter read inside a body.
  float& Number(unsigned slot) { return nums_[base_.num + slot]; }
  StringValue& String(unsigned slot) { return strs_[base_.str + slot]; }

 private:
  std::vector<float> nums_;
  std::vector<StringValue> strs_;
  Frame top_;   // first free slots
  Frame base_;  // the innermost active call's frame
};
