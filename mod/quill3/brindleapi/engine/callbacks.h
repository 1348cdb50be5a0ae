#pragma once

#include "base/afunction.h"
#include "engine/bodies.h"
#include "engine/each.h"

/// The callbacks that the sender of a command may supply, one type for each kind of reply, named as the
/// reply. A callback receives the values of its reply in the order of replies.inc: `callback::ok` is
/// `AFunction<void ()>`, `callback::error` is `AFunction<void (AString, uint32_t)>`.
namespace QUILL3::callback {

#define PARAMETER(body_name, tag) decltype (body::body_name::tag) tag
#define REPLY(name, entry, ...)                                                                              \
  using name = AFunction<void (__VA_OPT__ (EACH (PARAMETER, name, __VA_ARGS__)))>;
#include "engine/replies.inc"
#undef PARAMETER

} // namespace QUILL3::callback
