// Questions about the server: each operation is a round trip, and waits on an asynchronous connection too.
#include "api/command_flow.h"
#include "api/typehelp.h"

using namespace typehelp;

namespace {

using VideoStandard = OrvaConnObject::CBVideoStandardObject;

/// Asks what the server is set to, and stores one of the three values of the answer, converted.
ResultCode ask_video_standard (const ARef<OrvaConnObject> &self, uint32_t VideoStandard::*value,
                               uint32_t (*convert) (uint32_t), uint32_t *result) {
  const auto completion = OrvaConnObject::make_query<VideoStandard> (self);
  const ResultCode code = run_command (self, completion, &QUILL3::API::get_video_standard, {},
                                       completion->standard_callback (), completion->error_callback ());
  if (code == ORVA_OK)
    *result = convert (completion.get ()->*value);
  return code;
}

} // namespace

ResultCode OrvaConnObject::server_name (ARef<OrvaConnObject> self, OrvaStringBuffer name) {
  const auto completion = make_query<CBServerNameObject> (self);
  const ResultCode code = run_command (self, completion, &API::get_computer_name, {},
                                       completion->name_callback (), completion->error_callback ());
  if (code == ORVA_OK)
    fill_string_buffer (completion->name, name);
  return code;
}

ResultCode OrvaConnObject::video_frequency (ARef<OrvaConnObject> self, uint32_t *frequency) {
  return ask_video_standard (self, &VideoStandard::rate, video_frequency_from_wire, frequency);
}

ResultCode OrvaConnObject::video_resolution (ARef<OrvaConnObject> self, uint32_t *resolution) {
  return ask_video_standard (self, &VideoStandard::resolution, video_resolution_from_wire, resolution);
}

ResultCode OrvaConnObject::video_standard (ARef<OrvaConnObject> self, uint32_t *standard) {
  return ask_video_standard (self, &VideoStandard::standard, video_standard_from_wire, standard);
}

ResultCode OrvaConnObject::disk_usage1 (ARef<OrvaConnObject> self, uint64_t *total, uint64_t *available,
                                        uint32_t *field_size) {
  const auto completion = make_query<CBDiskSpaceObject> (self);
  const ResultCode code = run_command (self, completion, &API::get_disk_usage, {},
                                       completion->disk_callback (), completion->error_callback ());
  if (code != ORVA_OK)
    return code;
  *total = completion->total;
  *available = completion->available;
  *field_size = completion->field_size;
  return code;
}
