#pragma once

#include "base/astring.h"
#include "support/semaphore.h"

#include <atomic>

/// A caller that waits for the end of its command, whichever it is.
struct Waiter {
  support::Semaphore done{0};
  std::atomic<int> answers{0}, failures{0};
  void ok () {
    ++answers;
    done.release ();
  }
  void failed (AString, uint32_t) {
    ++failures;
    done.release ();
  }
};
