#pragma once

#include "base/csem.h"

/// A semaphore with a count of 0 or 1. Any thread may wait and post.
class bsem : public csem {
public:
  explicit bsem (bool initially_set) : csem (initially_set ? 1 : 0, 1) {}

  /// Sets the count to 1. A count that is 1 already is no failure.
  void post ();
};
