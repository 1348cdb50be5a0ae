#pragma once

#include "base/kelvane_assert.h"

#include <atomic>

/// While one lives, failed assertions of the library are counted and the process goes on. One at a time in a
/// process; assertions of all threads count.
class AssertCounter {
public:
  AssertCounter () : before_ (kelvane_assert_handler.exchange (&note)) { failures () = 0; }
  AssertCounter (const AssertCounter &) = delete;
  AssertCounter &operator= (const AssertCounter &) = delete;
  ~AssertCounter () { kelvane_assert_handler.store (before_); }

  /// Failures since this object was made, or since the last `take`.
  unsigned count () const { return failures ().load (); }
  /// The same, and starts again from 0.
  unsigned take () { return failures ().exchange (0); }
  /// The line that the last failure showed.
  unsigned last_line () const { return line ().load (); }

private:
  static std::atomic<unsigned> &failures () {
    static std::atomic<unsigned> count;
    return count;
  }
  static std::atomic<unsigned> &line () {
    static std::atomic<unsigned> last;
    return last;
  }
  static void note (const char *, const char *, unsigned at) {
    line () = at;
    ++failures ();
  }

  kelvane_assert_handler_function before_;
};
