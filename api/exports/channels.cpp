// Exports: the state of channels, and notices of what has changed. A channel's state is filled by reports,
// registered when it is asked for first, and read without traffic after that.
#include "api/basics/typehelp.h"
#include "api/exports/channel_query.h"

using namespace typehelp;
using QUILL3::ChannelInformation;

namespace {

void store_unless_null (uint32_t *out, uint32_t value) {
  if (out != nullptr)
    *out = value;
}

} // namespace

uint32_t orva_channel_clip (uint32_t connection, uint32_t channel, OrvaStringBuffer clip) {
  return query_channel (connection, channel, &ChannelCache::clipid,
                        [&] (const AString &id) { fill_string_buffer (id, clip); });
}

uint32_t orva_channel_clip_length (uint32_t connection, uint32_t channel, uint32_t *length) {
  return query_channel (connection, channel, &ChannelCache::info,
                        [&] (const ChannelInformation &info) { *length = info.ClipLength.value_or (0); });
}

uint32_t orva_channel_position (uint32_t connection, uint32_t channel, uint32_t *position) {
  return query_channel (connection, channel, &ChannelCache::position,
                        [&] (uint32_t reported) { *position = reported; });
}

uint32_t orva_channel_precue_count (uint32_t connection, uint32_t channel, uint32_t *count) {
  return query_channel (connection, channel, &ChannelCache::info,
                        [&] (const ChannelInformation &info) { *count = info.PrecueCount.value_or (0); });
}

uint32_t orva_channel_status (uint32_t connection, uint32_t channel, uint32_t *status) {
  return query_channel (connection, channel, &ChannelCache::status,
                        [&] (uint32_t wire) { *status = channel_status_from_wire (wire); });
}

uint32_t orva_channel_repeat (uint32_t connection, uint32_t channel, uint32_t *repeat) {
  return query_channel (connection, channel, &ChannelCache::info, [&] (const ChannelInformation &info) {
    *repeat = repeat_from_wire (info.Loop.value); // an absent field holds 0
  });
}

uint32_t orva_channel_speed (uint32_t connection, uint32_t channel, double *speed) {
  return query_channel (connection, channel, &ChannelCache::speed,
                        [&] (Kelvane::fixed wire) { *speed = speed_from_wire (wire); });
}

uint32_t orva_channel_angle (uint32_t connection, uint32_t channel, uint32_t *angle, uint32_t *angle_count) {
  return query_channel (connection, channel, &ChannelCache::info, [&] (const ChannelInformation &info) {
    store_unless_null (angle, info.Angle.value_or (0));
    store_unless_null (angle_count, info.AngleCount.value_or (1));
  });
}

uint32_t orva_channel_ee (uint32_t connection, uint32_t channel, uint32_t *edit_bits, uint32_t *mode) {
  return query_channel (connection, channel, &ChannelCache::info, [&] (const ChannelInformation &info) {
    const bool known = info.EEStatus.present;
    store_unless_null (edit_bits, known ? edit_mask_from_wire (info.EEStatus.value.SonyEditMask) : 0);
    store_unless_null (mode, known ? auto_ee_from_wire (info.EEStatus.value.AutoEE) : 0);
  });
}

// Success records no text.
// C7: doc/compatibility.md
uint32_t orva_get_notification (uint32_t connection, uint32_t timeout, uint32_t *kind, uint32_t *channel) {
  return on_connection (connection, [&] (const Connection &self) {
    self->channels.notices ().take (timeout, kind, channel);
    return ResultCode{ORVA_OK};
  });
}
