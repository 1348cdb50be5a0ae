#pragma once

#include "base/afunction.h"
#include "engine/bodies.h"

/// The callbacks that the sender of a command may supply, one type for each kind of reply, with the name of
/// the reply. A callback receives the values of its reply in the order of bodies.inc: `callback::ok` is
/// `AFunction<void ()>`, `callback::error` is `AFunction<void (AString, uint32_t)>`.
namespace QUILL3::callback {

#define REPLY(name, entry, ...) using name = AFunction<void (LIST_OF (PARAMETER, __VA_ARGS__))>;
#include "engine/bodies.inc"

} // namespace QUILL3::callback
