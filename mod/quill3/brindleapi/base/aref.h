#pragma once

#include "base/atomic_unsigned.h"

#include <cstddef>
#include <utility>

/// Where the holders of one type have their memory; a specialisation may define operator new and delete.
template <class T>
struct ARefMemory {};

/// The heap holder behind an `ARef<T>`: a count and the payload. Both operations may be called from any
/// thread.
template <class T>
class ARefObject : public ARefMemory<T> {
public:
  /// The count is 0 at first. The arguments build the payload.
  template <class... Arguments>
  explicit ARefObject (Arguments &&...arguments) : value (std::forward<Arguments> (arguments)...) {}
  ARefObject (const ARefObject &) = delete;
  ARefObject &operator= (const ARefObject &) = delete;

  /// Raises the count. @return false when it is 0: the object is being destroyed, or no reference has adopted
  /// it yet. The count then stays 0.
  bool increase_reference () noexcept {
    unsigned count = refcount.load ();
    while (count != 0) {
      if (refcount.compare_and_set (count, count + 1))
        return true;
      count = refcount.load ();
    }
    return false;
  }

  /// Lowers the count. At 0 it destroys the payload and frees the holder, on this thread. A payload may delay
  /// its destruction with a member `bool defer_destruction (void (*destroy) (void *), void *holder)`. When
  /// that returns true, the payload must call `destroy (holder)` once, later, on any thread.
  void decrease_reference () {
    if (--refcount != 0)
      return;
    if constexpr (requires (T & t, void (*end) (void *)) { t.defer_destruction (end, nullptr); }) {
      if (value.defer_destruction (&ARefObject::destroy, this))
        return;
    }
    destroy (this);
  }

  atomic_unsigned refcount; ///< number of live references
  alignas (alignof (T) > 8 ? alignof (T) : 8) T value;

private:
  static void destroy (void *holder) { delete static_cast<ARefObject *> (holder); }
};

/// A counted pointer to a heap object. `T` needs no base; a raw `T *` can't be turned back into a reference.
/// Threads: references to one object may be copied and dropped on different threads, each thread using its
/// own `ARef`; a single `ARef` must not be assigned while another thread reads it. The payload is not
/// protected.
template <class T>
class ARef {
public:
  /// Empty.
  ARef () noexcept = default;
  ARef (std::nullptr_t) noexcept {}
  ARef (const ARef &other) : holder_ (counted (other.holder_)) {}
  ARef (ARef &&other) noexcept : holder_ (std::exchange (other.holder_, nullptr)) {}
  ~ARef () { adopt (nullptr); }

  /// The old reference is dropped after the new one is in place.
  ARef &operator= (const ARef &other) {
    adopt (other.holder_);
    return *this;
  }
  ARef &operator= (ARef &&other) {
    ARef moved (std::move (other));
    std::swap (holder_, moved.holder_);
    return *this;
  }
  ARef &operator= (std::nullptr_t) {
    adopt (nullptr);
    return *this;
  }

  /// Makes an object from the arguments and returns the only reference to it.
  template <class... Arguments>
  static ARef create (Arguments &&...arguments) {
    auto *t = new ARefObject<T> (std::forward<Arguments> (arguments)...);
    if (!KELVANE_ASSERT_VALUE (t != 0))
      return {};
    t->refcount.store (1);
    ARef made;
    made.holder_ = t;
    return made;
  }

  /// The object, null for an empty reference. No count changes.
  T *get () const noexcept { return holder_ != nullptr ? &holder_->value : nullptr; }
  T *operator->() const noexcept { return get (); }
  T &operator* () const noexcept { return *get (); }
  /// The holder with the count, null for an empty reference.
  ARefObject<T> *holder () const noexcept { return holder_; }

  bool is_null () const noexcept { return holder_ == nullptr; }
  explicit operator bool () const noexcept { return holder_ != nullptr; }
  /// Equal when both share a holder.
  bool operator== (const ARef &other) const noexcept { return holder_ == other.holder_; }

private:
  static ARefObject<T> *counted (ARefObject<T> *ref) {
    if (ref == nullptr || !KELVANE_ASSERT_VALUE (ref->increase_reference ()))
      return nullptr;
    return ref;
  }

  void adopt (ARefObject<T> *fresh) {
    if (fresh != nullptr && !fresh->increase_reference ()) {
      kelvane_assert_report_value (__FILE__, static_cast<unsigned> (__LINE__), "0");
      fresh = nullptr;
    }
    ARefObject<T> *old = std::exchange (holder_, fresh);
    if (old != nullptr)
      old->decrease_reference ();
  }

  ARefObject<T> *holder_ = nullptr;
};
