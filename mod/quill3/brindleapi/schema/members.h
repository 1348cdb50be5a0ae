#pragma once

#include "schema/enumerations.h"

#include <string_view>

namespace QUILL3 {

/// The number of a spelling, computed at compile time: `member (Enumeration::TrackType, "audio")` is 2. An
/// unknown spelling does not compile.
consteval uint32_t member (Enumeration which, std::string_view spelling) {
  const auto place = [spelling] (auto... spellings) {
    const std::string_view all[] = {spellings...};
    uint32_t number = 0;
    while (all[number] != spelling) // reading beyond the end is what does not compile
      ++number;
    return number;
  };
  switch (which) {
#define ENUMERATION(name, ...)                                                                               \
  case Enumeration::name:                                                                                    \
    return place (__VA_ARGS__);
#include "schema/enumerations.inc"
  }
  return UINT32_MAX;
}

} // namespace QUILL3
