#pragma once

#include "base/astring.h"
#include "support/semaphore.h"

#include <atomic>

/// Waits for the end of a command: `ok` and `failed` are its callbacks, and each of them releases `done`
/// once.
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
