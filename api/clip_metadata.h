#pragma once

#include "api/metadata_handles.h"
#include "api/results.h"
#include "orva.h"

/// The free-form pairs of a clip, through its metadata handle. They keep the order that the server gave; a
/// key may stand there twice, and then the first one counts. Reads see the snapshot; changes go to the server
/// first. Any thread.

/// @param has receives 1 or 0, 0 for an unknown handle; may be null
ResultCode clip_has_meta (uint32_t handle, const orva_char *key, uint32_t *has) noexcept;
/// Fills the buffer in any case, with the empty text for want of a value.
ResultCode clip_get_meta (uint32_t handle, const orva_char *key, OrvaStringBuffer value) noexcept;
ResultCode clip_set_meta (uint32_t handle, const orva_char *key, const orva_char *value) noexcept;
ResultCode clip_delete_meta (uint32_t handle, const orva_char *key) noexcept;
/// @param list receives a list handle; may be null, and then none is made
ResultCode clip_open_metakeys (uint32_t handle, uint32_t *list) noexcept;
