#pragma once

#include "base/kelvane_assert.h"

/// Runs a function while it is constructed: as a static object, during static initialisation. A null function
/// is an assertion failure and nothing runs.
class RunOnce {
public:
  explicit RunOnce (void (*run_function) ()) {
    if (KELVANE_ASSERT_VALUE (run_function != 0))
      run_function ();
  }
};
