// The state of channels: filled by reports, asked for by need, read without traffic.
#include "api/channel_query.h"
#include "api/command_flow.h"
#include "api/typehelp.h"
#include "platform/clocks.h"
#include "platform/threads.h"

#include <initializer_list>
#include <utility>

using namespace typehelp;

namespace {

constexpr int64_t first_value_seconds = 5;

// The server sends the present value right after the registration, so this is short as a rule. It goes by
// whole seconds of the wall clock, and gives way to the thread that it waits for.
bool wait_for_first_value (const atomic_unsigned &valid) {
  const int64_t start = platform::seconds_since_1970 ();
  while (platform::seconds_since_1970 () - start <= first_value_seconds) {
    if (valid.load () != 0)
      return true;
    platform::thread_yield ();
  }
  return valid.load () != 0;
}

void store_unless_null (uint32_t *out, uint32_t value) {
  if (out != nullptr)
    *out = value;
}

} // namespace

ResultCode OrvaConnObject::no_such_channel (uint32_t channel) {
  return result_error (AString ("Channel %1 does not exist").arg (channel));
}

// Nothing keeps two threads from registering one item at a time: both then wait, and the server is asked
// twice.
ResultCode OrvaConnObject::ensure_channel_item (const ARef<OrvaConnObject> &self, uint32_t channel,
                                                uint32_t report_type, atomic_unsigned &registered,
                                                const atomic_unsigned &valid) {
  if (registered.load () != 0)
    return result_ok ();
  const QUILL3::command::channel_report_register command = {.Channel = channel,
                                                            .ChannelReportType = report_type};
  unsigned link = 0;
  const ResultCode code = forced_command (self, &API::channel_report_register, command, &link);
  if (code != ORVA_OK)
    return code;
  if (!wait_for_first_value (valid))
    return result_error ("Register for channel item failed unexpectedly");
  self->keep_registered (registered, link, [&] { self->channel_report_register (command); });
  return result_ok ();
}

void OrvaConnObject::register_channel_reports () {
  for (uint32_t channel = 0; channel != channel_count; ++channel)
    channel_cache (channel).each_item ([&] (auto &item) {
      if (item.registered.load () != 0)
        channel_report_register ({.Channel = channel, .ChannelReportType = item.report_type});
    });
}

// --- Queries

ResultCode OrvaConnObject::channel_clip (ARef<OrvaConnObject> self, uint32_t channel, OrvaStringBuffer clip) {
  return query_channel (self, channel, &ChannelCache::clipid,
                        [&] (const AString &id) { fill_string_buffer (id, clip); });
}

ResultCode OrvaConnObject::channel_clip_length (ARef<OrvaConnObject> self, uint32_t channel,
                                                uint32_t *length) {
  return query_channel (self, channel, &ChannelCache::info, [&] (const QUILL3::ChannelInformation &info) {
    *length = info.ClipLength.value_or (0);
  });
}

ResultCode OrvaConnObject::channel_position (ARef<OrvaConnObject> self, uint32_t channel,
                                             uint32_t *position) {
  return query_channel (self, channel, &ChannelCache::timecode,
                        [&] (const ChannelPosition &place) { *position = place.position; });
}

ResultCode OrvaConnObject::channel_precue_count (ARef<OrvaConnObject> self, uint32_t channel,
                                                 uint32_t *count) {
  return query_channel (self, channel, &ChannelCache::info, [&] (const QUILL3::ChannelInformation &info) {
    *count = info.PrecueCount.value_or (0);
  });
}

ResultCode OrvaConnObject::channel_status (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *status) {
  return query_channel (self, channel, &ChannelCache::status,
                        [&] (uint32_t wire) { *status = channel_status_from_wire (wire); });
}

ResultCode OrvaConnObject::channel_repeat (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *repeat) {
  return query_channel (self, channel, &ChannelCache::info, [&] (const QUILL3::ChannelInformation &info) {
    *repeat = repeat_from_wire (info.Loop.value); // absent reads as what the field holds, which is 0
  });
}

ResultCode OrvaConnObject::channel_speed (ARef<OrvaConnObject> self, uint32_t channel, double *speed) {
  return query_channel (self, channel, &ChannelCache::speed,
                        [&] (Kelvane::fixed wire) { *speed = speed_from_wire (wire); });
}

ResultCode OrvaConnObject::channel_angle (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *angle,
                                          uint32_t *angle_count) {
  return query_channel (self, channel, &ChannelCache::info, [&] (const QUILL3::ChannelInformation &info) {
    store_unless_null (angle, info.Angle.value_or (0));
    store_unless_null (angle_count, info.AngleCount.value_or (1));
  });
}

ResultCode OrvaConnObject::channel_ee (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *edit_bits,
                                       uint32_t *mode) {
  return query_channel (self, channel, &ChannelCache::info, [&] (const QUILL3::ChannelInformation &info) {
    const bool known = info.EEStatus.present;
    store_unless_null (edit_bits, known ? edit_mask_from_wire (info.EEStatus.value.SonyEditMask) : 0);
    store_unless_null (mode, known ? auto_ee_from_wire (info.EEStatus.value.AutoEE) : 0);
  });
}

// --- Reports

template <class Item>
void OrvaConnObject::keep_channel_value (uint32_t channel, Item ChannelCache::*item,
                                         typename Item::Value value,
                                         std::initializer_list<uint32_t> notices) {
  if (channel >= channel_count)
    return;
  Item &of_channel = channel_cache (channel).*item;
  {
    const AMutexScope hold (of_channel.lock);
    std::swap (of_channel.value, value);
    of_channel.valid.store (1);
  }
  for (const uint32_t kind : notices)
    notifier_.post (kind, channel);
}

void OrvaConnObject::on_channel_status (uint32_t Channel, uint32_t ChannelStatus, AOption<AString>) {
  keep_channel_value (Channel, &ChannelCache::status, ChannelStatus, {ORVA_NOTICE_STATUS});
}

void OrvaConnObject::on_channel_clipid (uint32_t Channel, AString ClipID) {
  keep_channel_value (Channel, &ChannelCache::clipid, std::move (ClipID), {ORVA_NOTICE_CLIP});
}

void OrvaConnObject::on_channel_speed (uint32_t Channel, Kelvane::fixed Speed) {
  keep_channel_value (Channel, &ChannelCache::speed, Speed, {ORVA_NOTICE_SPEED});
}

void OrvaConnObject::on_channel_timecode (uint32_t Channel, uint32_t ClipPosition,
                                          QUILL3::Timecode DisplayTimecode, QUILL3::Timecode InputTimecode) {
  keep_channel_value (Channel, &ChannelCache::timecode, {ClipPosition, DisplayTimecode, InputTimecode},
                      {ORVA_NOTICE_POSITION});
}

// All five are told, whether they have changed or not.
void OrvaConnObject::on_channel_info (uint32_t Channel, QUILL3::ChannelInformation ChannelInformation) {
  keep_channel_value (Channel, &ChannelCache::info, std::move (ChannelInformation),
                      {ORVA_NOTICE_CLIP_LENGTH, ORVA_NOTICE_PRECUE_COUNT, ORVA_NOTICE_REPEAT,
                       ORVA_NOTICE_ANGLE, ORVA_NOTICE_EE});
}

// --- Notices

void OrvaConnObject::get_notification (ARef<OrvaConnObject> self, uint32_t timeout, uint32_t *kind,
                                       uint32_t *channel) {
  self->notifier_.take (timeout, kind, channel);
}
