#pragma once

#include "base/kelvane_assert.h"
#include "base/sole_owner.h"
#include "platform/sanitizers.h"

#include <atomic>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>

/// A doubly linked list of shared entries. One thread at a time. A cursor keeps its entry alive, even when
/// the list has removed it.
///
/// A `T` that itself holds lists of `T` declares `static constexpr bool holds_lists = true;`. Nested lists
/// are then destroyed in a loop, not by recursion, so that no depth of nesting overflows the stack.
template <class T>
class nonstd_list {
public:
  struct EntryStruct {
    template <class... Arguments>
    explicit EntryStruct (std::in_place_t, Arguments &&...arguments)
        : value (std::forward<Arguments> (arguments)...) {}
    std::shared_ptr<EntryStruct> next;
    std::shared_ptr<EntryStruct> previous;
    T value;
  };
  using Entry = std::shared_ptr<EntryStruct>;

  /// Walks forward. An empty cursor is the end; advancing it does nothing.
  template <class V>
  class Cursor {
  public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = V *;
    using reference = V &;

    Cursor () noexcept = default;
    explicit Cursor (Entry entry) noexcept : entry_ (std::move (entry)) {}
    V &operator* () const noexcept { return entry_->value; }
    V *operator->() const noexcept { return &entry_->value; }
    Cursor &operator++ () noexcept {
      if (entry_ != nullptr)
        entry_ = Entry (entry_->next);
      return *this;
    }
    Cursor operator++ (int) noexcept {
      Cursor before = *this;
      ++*this;
      return before;
    }
    bool operator== (const Cursor &) const noexcept = default;
    const Entry &entry () const noexcept { return entry_; }

  private:
    Entry entry_;
  };
  using iterator = Cursor<T>;
  using const_iterator = Cursor<const T>;

  nonstd_list () noexcept = default;
  /// Copies of the entries, in order.
  nonstd_list (const nonstd_list &other) : nonstd_list () {
    for (const EntryStruct *e = other.first_.get (); e != nullptr; e = e->next.get ())
      push_back (e->value);
  }
  /// Leaves @p other empty.
  nonstd_list (nonstd_list &&other) noexcept { swap (other); }
  nonstd_list &operator= (nonstd_list other) noexcept {
    swap (other);
    return *this;
  }
  ~nonstd_list () { clear (); }

  void swap (nonstd_list &other) noexcept {
    first_.swap (other.first_);
    last_.swap (other.last_);
    std::swap (count_, other.count_);
  }

  void push_back (const T &value) { push_back (make_entry (value)); }
  void push_back (T &&value) { push_back (make_entry (std::move (value))); }
  void push_front (const T &value) { push_front (make_entry (value)); }
  void push_front (T &&value) { push_front (make_entry (std::move (value))); }

  /// Links an entry that is in no list. Null is an assertion failure and changes nothing.
  void push_back (Entry e) {
    if (!KELVANE_ASSERT_VALUE (e != 0))
      return;
    e->next.reset ();
    e->previous = std::move (last_);
    last_ = e;
    (e->previous != nullptr ? e->previous->next : first_) = e;
    ++count_;
  }
  /// Links an entry that is in no list. Null is an assertion failure and changes nothing.
  void push_front (Entry e) {
    if (!KELVANE_ASSERT_VALUE (e != 0))
      return;
    e->previous.reset ();
    e->next = std::move (first_);
    first_ = e;
    (e->next != nullptr ? e->next->previous : last_) = e;
    ++count_;
  }
  /// Moves all entries of @p other to the end of this list, in constant time.
  void append (nonstd_list &&other) noexcept {
    if (other.count_ == 0)
      return;
    if (count_ == 0)
      return swap (other);
    last_->next = other.first_;
    other.first_->previous = std::move (last_);
    last_ = std::move (other.last_);
    other.first_.reset ();
    count_ += std::exchange (other.count_, 0);
  }
  /// Unlinks the first entry, in constant time. @return it, null when the list is empty.
  Entry take_front () noexcept {
    Entry e = std::move (first_);
    if (e == nullptr)
      return e;
    first_ = std::move (e->next);
    (first_ != nullptr ? first_->previous : last_).reset ();
    --count_;
    return e;
  }

  /// Removes all entries.
  void clear () noexcept {
    if constexpr (requires { T::holds_lists; })
      clear_nested ();
    else
      clear_entries ();
  }

  uint32_t size () const noexcept { return count_; }
  bool is_empty () const noexcept { return count_ == 0; }

  iterator begin () noexcept { return iterator (first_); }
  iterator end () noexcept { return iterator (); }
  const_iterator begin () const noexcept { return const_iterator (first_); }
  const_iterator end () const noexcept { return const_iterator (); }

  /// The value at @p index, in linear time. @param index below `size`.
  T &at (uint32_t index) noexcept { return walk (index)->value; }
  const T &at (uint32_t index) const noexcept { return walk (index)->value; }

private:
  template <class V>
  static Entry make_entry (V &&value) {
    return std::make_shared<EntryStruct> (std::in_place, std::forward<V> (value));
  }
  EntryStruct *walk (uint32_t index) const noexcept {
    EntryStruct *e = first_.get ();
    while (index-- != 0)
      e = e->next.get ();
    return e;
  }

  void clear_entries () noexcept {
    Entry cursor = std::move (first_);
    last_.reset ();
    count_ = 0;
    while (cursor != nullptr) {
      Entry next = std::move (cursor->next);
      cursor->previous.reset ();
      cursor = std::move (next);
    }
  }

  // While a list is being cleared on this thread, lists inside its values pass their entries to it.
  void clear_nested () noexcept {
    static thread_local nonstd_list *clearing = nullptr;
    if (count_ == 0)
      return;
    if (clearing != nullptr)
      return clearing->append (std::move (*this));
    nonstd_list doomed (std::move (*this));
    clearing = &doomed;
    while (doomed.take_front () != nullptr) {
    }
    clearing = nullptr;
  }

  Entry first_;
  Entry last_;
  uint32_t count_ = 0;
};

/// The empty list that an empty `cow_list` reads as. It is never destroyed. Any thread.
template <class T>
const nonstd_list<T> &empty_nonstd_list () {
  static const nonstd_list<T> &empty = *new nonstd_list<T>;
  return empty;
}

/// A list that copies share until one of them writes. A copy only raises a count. Copies may be used by
/// different threads, each by one thread at a time.
template <class T>
class cow_list {
public:
  cow_list () noexcept = default;
  /// Takes the entries of @p list.
  cow_list (nonstd_list<T> &&list) {
    if (!list.is_empty ())
      list_ = std::make_shared<nonstd_list<T>> (std::move (list));
  }
  cow_list (const nonstd_list<T> &list) : cow_list (nonstd_list<T> (list)) {}

  /// The list for reading. It is valid until this object is written to, assigned or destroyed.
  const nonstd_list<T> &read () const { return list_ != nullptr ? *list_ : empty_nonstd_list<T> (); }
  /// The list for writing. A shared list is copied first. Valid as `read`.
  nonstd_list<T> &write () {
    if (list_ == nullptr)
      list_ = std::make_shared<nonstd_list<T>> ();
    else if (!is_sole ())
      list_ = std::make_shared<nonstd_list<T>> (std::as_const (*list_));
    return *list_;
  }
  /// Empties this object and returns its list: the entries themselves when no copy shares them, else copies.
  nonstd_list<T> take () {
    nonstd_list<T> taken;
    if (list_ != nullptr)
      taken = is_sole () ? std::move (*list_) : *list_;
    list_.reset ();
    return taken;
  }
  /// Drops the list.
  void clear () noexcept { list_.reset (); }

  uint32_t size () const noexcept { return list_ != nullptr ? list_->size () : 0; }
  bool is_empty () const noexcept { return size () == 0; }

private:
  bool is_sole () const noexcept { return is_sole_owner (list_); }

  std::shared_ptr<nonstd_list<T>> list_;
};
