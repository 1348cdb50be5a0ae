/// Texts whose code points are contiguous in memory, for fast scans.
#pragma once

#include "base/astring.h"

#include <vector>

/// The code points of a text.
inline std::vector<AChar> flat_text (const AString &text) {
  std::vector<AChar> flat;
  flat.reserve (text.length ());
  text.walk_runs ([&flat] (const AChar *run, uint64_t count) {
    flat.insert (flat.end (), run, run + count);
    return true;
  });
  return flat;
}
