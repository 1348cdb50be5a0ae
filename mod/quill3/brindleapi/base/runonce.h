#pragma once

#include "base/kelvane_assert.h"

/// Runs a function when it is constructed. As a static object it does so during static initialisation. A null
/// function is an assertion failure and nothing runs.
class RunOnce {
public:
  explicit RunOnce (void (*run_function) ()) {
    if (KELVANE_ASSERT_VALUE (run_function != 0))
      run_function ();
  }
};
