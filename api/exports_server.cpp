// Exports: server information.
#include "api/export_call.h"
#include "orva.h"

#include <algorithm>

namespace {

/// As many whole frames of two fields as fit, in fields.
uint32_t frames_in_fields (uint64_t space, uint32_t field_size) {
  const uint64_t fields = (space / field_size) & ~uint64_t{1};
  return static_cast<uint32_t> (std::min<uint64_t> (fields, UINT32_MAX));
}

} // namespace

uint32_t orva_server_name (uint32_t connection, OrvaStringBuffer name) {
  return on_connection (connection, OrvaConnObject::server_name, name);
}

uint32_t orva_video_frequency (uint32_t connection, uint32_t *frequency) {
  return on_connection (connection, OrvaConnObject::video_frequency, frequency);
}

uint32_t orva_video_resolution (uint32_t connection, uint32_t *resolution) {
  return on_connection (connection, OrvaConnObject::video_resolution, resolution);
}

uint32_t orva_video_standard (uint32_t connection, uint32_t *standard) {
  return on_connection (connection, OrvaConnObject::video_standard, standard);
}

uint32_t orva_disk_usage1 (uint32_t connection, uint64_t *total, uint64_t *available, uint32_t *field_size) {
  return on_connection (connection, OrvaConnObject::disk_usage1, total, available, field_size);
}

uint32_t orva_disk_usage2 (uint32_t connection, uint32_t *total, uint32_t *available) {
  uint64_t total_space = 0;
  uint64_t available_space = 0;
  uint32_t field_size = 0;
  const uint32_t code = orva_disk_usage1 (connection, &total_space, &available_space, &field_size);
  if (code != ORVA_OK)
    return code;
  if (field_size == 0)
    return result_internal_error ();
  *total = frames_in_fields (total_space, field_size);
  *available = frames_in_fields (available_space, field_size);
  return code;
}
