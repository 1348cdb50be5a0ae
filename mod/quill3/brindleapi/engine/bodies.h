#pragma once

#include "schema/records.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// The bodies of bodies.inc, as structs in namespace body.
namespace QUILL3 {

#define REPLY(name, entry, ...) REPORT (name __VA_OPT__ (, ) __VA_ARGS__)
#define REPORT(name, ...)                                                                                    \
  namespace body {                                                                                           \
  struct name {                                                                                              \
    EACH (MEMBER, __VA_ARGS__)                                                                               \
  };                                                                                                         \
  }                                                                                                          \
  ROWS (body::name, __VA_ARGS__)
#include "engine/bodies.inc"

} // namespace QUILL3

#pragma GCC diagnostic pop
