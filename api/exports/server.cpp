// Exports: what the server says about itself. Each is a round trip, and waits on an asynchronous connection
// too.
#include "api/basics/typehelp.h"
#include "api/exports/export_call.h"

#include <algorithm>

using namespace typehelp;

namespace {

/// What the server is set to, as the wire's numbers.
struct VideoSettings {
  uint32_t standard = 0;
  uint32_t rate = 0;
  uint32_t resolution = 0;
};

/// Asks what the server is set to, and stores one of the values, converted.
ResultCode video_setting (uint32_t connection, uint32_t VideoSettings::*value, uint32_t (*convert) (uint32_t),
                          uint32_t *result) noexcept {
  return on_connection (connection, [&] (const Connection &self) {
    VideoSettings settings;
    const ResultCode code =
        ask (self, command::get_video_standard{}, settings.standard, settings.rate, settings.resolution);
    if (code == ORVA_OK)
      *result = convert (settings.*value);
    return code;
  });
}

/// As many whole frames of two fields as fit, in fields.
// C49: doc/compatibility.md
uint32_t frames_in_fields (uint64_t space, uint32_t field_size) {
  const uint64_t fields = (space / field_size) & ~uint64_t{1};
  return static_cast<uint32_t> (std::min<uint64_t> (fields, UINT32_MAX));
}

} // namespace

uint32_t orva_server_name (uint32_t connection, OrvaStringBuffer name) {
  return on_connection (connection, [&] (const Connection &self) {
    AString answer;
    const ResultCode code = ask (self, command::get_computer_name{}, answer);
    if (code == ORVA_OK)
      fill_string_buffer (answer, name);
    return code;
  });
}

uint32_t orva_video_frequency (uint32_t connection, uint32_t *frequency) {
  return video_setting (connection, &VideoSettings::rate, video_frequency_from_wire, frequency);
}

uint32_t orva_video_resolution (uint32_t connection, uint32_t *resolution) {
  return video_setting (connection, &VideoSettings::resolution, video_resolution_from_wire, resolution);
}

uint32_t orva_video_standard (uint32_t connection, uint32_t *standard) {
  return video_setting (connection, &VideoSettings::standard, video_standard_from_wire, standard);
}

uint32_t orva_disk_usage1 (uint32_t connection, uint64_t *total, uint64_t *available, uint32_t *field_size) {
  return on_connection (connection, [&] (const Connection &self) {
    uint64_t total_space = 0;
    uint64_t available_space = 0;
    uint32_t size_of_field = 0;
    const ResultCode code =
        ask (self, command::get_disk_usage{}, total_space, available_space, size_of_field);
    if (code != ORVA_OK)
      return code;
    *total = total_space;
    *available = available_space;
    *field_size = size_of_field;
    return code;
  });
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
