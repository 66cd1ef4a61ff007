// Intrusive two-way lists: statements, variable references and the like
// carry their own links, so insertion and removal never allocate.
#pragma once
#include <memory>

template <typename T, bool Owns>
class BaseList_T;

template <typename T>
class BaseNode_T {
 public:
  BaseNode_T() = default;
  BaseNode_T(const BaseNode_T&) = delete;
  BaseNode_T& operator=(const BaseNode_T&) = delete;

  T* Next() const { return next_ && !next_->sentinel_ ? static_cast<T*>(next_) : nullptr; }
  T* Prev() const { return prev_ && !prev_->sentinel_ ? static_cast<T*>(prev_) : nullptr; }
  bool Linked() const { return next_ != nullptr; }
  void Unlink() {
    if (!next_) return;
    prev_->next_ = next_;
    next_->prev_ = prev_;
    prev_ = next_ = nullptr;
  }

 protected:
  ~BaseNode_T() { Unlink(); }

 private:
  template <typename, bool>
  friend class BaseList_T;
  BaseNode_T* prev_ = nullptr;
  BaseNode_T* next_ = nullptr;
  bool sentinel_ = false;  // the list head, which is no T
};

// A sentinel-headed circular list. An owning list takes its nodes as
// unique_ptr and is the only one to delete them: on Erase and at its end.
template <typename T, bool Owns>
class BaseList_T {
 public:
  BaseList_T() {
    head_.sentinel_ = true;
    head_.prev_ = head_.next_ = &head_;
  }
  BaseList_T(const BaseList_T&) = delete;
  BaseList_T& operator=(const BaseList_T&) = delete;
  ~BaseList_T() { Clear(); }

  T* First() const { return head_.Next(); }
  T* Last() const { return head_.Prev(); }
  bool Empty() const { return head_.next_ == &head_; }

  // Links node before `before`, or at the end when before is null.
  void InsertBefore(T* node, T* before) requires(!Owns) { Link(node, before); }
  void Append(T* node) requires(!Owns) { Link(node, nullptr); }
  // The owning forms: the list takes the node over.
  T* InsertBefore(std::unique_ptr<T> node, T* before) requires Owns {
    T* n = node.release();
    Link(n, before);
    return n;
  }
  T* Append(std::unique_ptr<T> node) requires Owns {
    return InsertBefore(std::move(node), nullptr);
  }
  // Unlinks a node of this list and destroys it.
  void Erase(T* node) requires Owns {
    node->Unlink();
    delete node;
  }

  void Clear() {
    while (T* node = First()) {
      if constexpr (Owns)
        Erase(node);
      else
        node->Unlink();
    }
  }

 private:
  void Link(T* node, T* before) {
    BaseNode_T<T>* at = before ? static_cast<BaseNode_T<T>*>(before) : &head_;
    BaseNode_T<T>* n = node;
    n->next_ = at;
    n->prev_ = at->prev_;
    at->prev_->next_ = n;
    at->prev_ = n;
  }

  struct Head final : BaseNode_T<T> {};
  Head head_;
};
