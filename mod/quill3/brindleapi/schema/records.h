#pragma once

#include "schema/rows.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// The records of records.inc, as structs. Everything is zero, empty or absent until it is set. Values of
/// enumerations are the numbers of enumerations.inc.
namespace QUILL3 {

#define RECORD(name, ...)                                                                                    \
  struct name {                                                                                              \
    EACH (MEMBER, __VA_ARGS__)                                                                               \
    bool operator== (const name &) const = default;                                                          \
  };                                                                                                         \
  ROWS (name, __VA_ARGS__)
#include "schema/records.inc"

} // namespace QUILL3

#pragma GCC diagnostic pop
