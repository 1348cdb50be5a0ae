#pragma once

#include <cstdlib>

/// Ends the process, which the fuzzer takes for a finding.
inline void require (bool holds) {
  if (!holds)
    std::abort ();
}

/// How many assertions have failed since it was last set, while `count_report` is the handler.
inline unsigned reports = 0;
inline void count_report (const char *, const char *, unsigned) {
  ++reports;
}
