#pragma once

#include "base/afunction.h"

/// Binds an object and one of its member functions into an `AFunction` of kind 4. The object must outlive the
/// value. Two of the same object and member are equal.
class AMethod {
public:
  template <class C, class R, class... A>
  static AFunction<R (A...)> bind (std::type_identity_t<C> *object, R (C::*member) (A...)) noexcept {
    return bound<C, R (C::*) (A...), R, A...> (object, member);
  }
  template <class C, class R, class... A>
  static AFunction<R (A...)> bind (const std::type_identity_t<C> *object,
                                   R (C::*member) (A...) const) noexcept {
    return bound<const C, R (C::*) (A...) const, R, A...> (object, member);
  }

private:
  template <class C, class M, class R, class... A>
  static AFunction<R (A...)> bound (C *object, M m) noexcept {
    static_assert (sizeof (m) <= sizeof (AFunctionValue));
    if (m == nullptr)
      return {};
    AFunctionValue bytes;
    std::memcpy (bytes.words, &m, sizeof (m));
    return AFunction<R (A...)>::with_two (&trampoline<C, M, R, A...>,
                                          const_cast<void *> (static_cast<const void *> (object)), bytes);
  }

  template <class C, class M, class R, class... A>
  static R trampoline (void *object, AFunctionValue bytes, A... arguments) {
    M m;
    std::memcpy (&m, bytes.words, sizeof (m));
    return (static_cast<C *> (object)->*m) (std::forward<A> (arguments)...);
  }
};
