#pragma once

#include "base/csem.h"

/// A semaphore that is set or not. Any thread may wait and post.
class bsem : public csem {
public:
  explicit bsem (bool initially_set) : csem (initially_set ? 1 : 0, 1) {}

  /// Sets it. Posting one that is set already is no failure.
  void post ();
};
