#pragma once

#include "base/kelvane_assert.h"

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

/// The second bound value of an `AFunction`: two words, wide enough for a member-function pointer.
struct AFunctionValue {
  uint64_t words[2]{};

  AFunctionValue () noexcept = default;
  AFunctionValue (void *pointer) noexcept : words{reinterpret_cast<uintptr_t> (pointer), 0} {}
  /// The pointer that the value was made from.
  void *pointer () const noexcept { return reinterpret_cast<void *> (static_cast<uintptr_t> (words[0])); }
  bool operator== (const AFunctionValue &) const noexcept = default;
  auto operator<=> (const AFunctionValue &) const noexcept = default;
};

/// The fields and comparisons that all `AFunction` instances share.
class AFunctionBase {
public:
  bool is_empty () const noexcept { return kind_ == 0; }
  /// Equal kinds, functions and those bound values that the kind uses.
  bool operator== (const AFunctionBase &other) const;
  bool operator!= (const AFunctionBase &other) const { return !(*this == other); }
  /// By kind, then by the address of the function, then by bound values. The result for two empty ones is
  /// true, so an order with empty values is not strict: do not sort them.
  bool operator<(const AFunctionBase &other) const;

protected:
  using Function = void (*) ();

  AFunctionBase () noexcept = default;
  AFunctionBase (uint32_t kind, Function function, uint64_t first, AFunctionValue second) noexcept {
    if (function == nullptr)
      return;
    kind_ = kind;
    function_ = function;
    first_ = first;
    second_ = second;
  }

  uint32_t kind_ = 0;
  Function function_ = nullptr;
  uint64_t first_ = 0;
  AFunctionValue second_;
};

template <class Signature>
class AFunction;

/// A callback: a plain function and up to two values bound in front of its arguments. A plain value of five
/// words that owns nothing and allocates nothing; copying it copies bytes. What the bound values point at
/// must outlive it. An empty one does nothing when run. One thread at a time; nothing is locked.
template <class R, class... A>
class AFunction<R (A...)> : public AFunctionBase {
public:
  /// Empty (kind 0).
  AFunction () noexcept = default;
  AFunction (std::nullptr_t) noexcept {}
  /// Calls `f (...)` (kind 1). Here and below a null function makes an empty value.
  AFunction (R (*f) (A...)) noexcept : AFunctionBase (1, erased (f), 0, {}) {}
  /// A value to be kept, or one that was kept so. It must be run with the signature that it had at first.
  explicit AFunction (const AFunctionBase &kept) noexcept : AFunctionBase (kept) {}

  /// Calls `f (...)` (kind 1).
  static AFunction plain (R (*f) (A...)) noexcept { return AFunction (f); }
  /// Calls `f (value, ...)` (kind 2).
  static AFunction with_number (R (*f) (uint32_t, A...), uint32_t value) noexcept {
    return AFunction (2, erased (f), value, {});
  }
  /// Calls `f (value, ...)` (kind 3).
  static AFunction with_pointer (R (*f) (void *, A...), void *value) noexcept {
    return AFunction (3, erased (f), reinterpret_cast<uintptr_t> (value), {});
  }
  /// Calls `f (first, second, ...)` (kind 4).
  static AFunction with_two (R (*f) (void *, AFunctionValue, A...), void *first,
                             AFunctionValue second) noexcept {
    return AFunction (4, erased (f), reinterpret_cast<uintptr_t> (first), second);
  }

  /// Makes the call. An empty value calls nothing and returns a default value.
  R run (A... arguments) const {
    if (kind_ != 0 && !KELVANE_ASSERT_VALUE (function_ != nullptr))
      return R ();
    switch (kind_) {
    case 0:
      return R ();
    case 1:
      return call<R (*) (A...)> (std::forward<A> (arguments)...);
    case 2:
      return call<R (*) (uint32_t, A...)> (static_cast<uint32_t> (first_), std::forward<A> (arguments)...);
    case 3:
      return call<R (*) (void *, A...)> (first_pointer (), std::forward<A> (arguments)...);
    case 4:
      return call<R (*) (void *, AFunctionValue, A...)> (first_pointer (), second_,
                                                         std::forward<A> (arguments)...);
    default:
      kelvane_assert_report_value (__FILE__, static_cast<unsigned> (__LINE__), "0");
      return R ();
    }
  }

private:
  using AFunctionBase::AFunctionBase;

  template <class F>
  static Function erased (F *f) noexcept {
    return reinterpret_cast<Function> (f);
  }
  template <class F, class... P>
  R call (P &&...arguments) const {
    return reinterpret_cast<F> (function_) (std::forward<P> (arguments)...);
  }
  void *first_pointer () const noexcept { return reinterpret_cast<void *> (static_cast<uintptr_t> (first_)); }
};

/// Receives bytes: their address and their number. They are valid during the call only.
using AByteSink = AFunction<void (const void *data, uint64_t length)>;
