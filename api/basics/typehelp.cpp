#include "api/basics/typehelp.h"

#include "base/kelvane_assert.h"
#include "schema/members.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <type_traits>

namespace typehelp {

namespace {

using QUILL3::Enumeration;
constexpr uint32_t track_video = member (Enumeration::TrackType, "video");
constexpr uint32_t track_key = member (Enumeration::TrackType, "key");
constexpr uint32_t track_audio = member (Enumeration::TrackType, "audio");
constexpr uint32_t track_timecode = member (Enumeration::TrackType, "timecode");
constexpr uint32_t first_exported_resolution = member (Enumeration::VideoResolution, "1080i");
constexpr uint32_t first_exported_standard = member (Enumeration::VideoStandard, "1080_60i");
constexpr uint32_t first_exported_playback = member (Enumeration::Playback, "field");
constexpr uint32_t exported_playbacks = 2;

constexpr uint32_t edit_bit_0 = 0x10;
constexpr uint32_t edit_bit_1 = 0x20;
constexpr uint32_t edit_bit_2 = 0x3CF;
constexpr double fastest = 200.0;
constexpr double fixed_one = 65536.0;

constexpr uint32_t no_rate = 0xFF;

/// Rate classes by VideoStandard.
constexpr uint8_t rates[] = {
    0, 1, 2, no_rate, no_rate, no_rate, no_rate, no_rate,          // 4K, 60p to 23.98p
    0, 1, 2, no_rate, no_rate, no_rate, no_rate, no_rate, no_rate, // 1080, 60p to 23.98psf
    0, 1, 2, 3,       4,                                           // 1080, 60i to 47.95i
    0, 1, 2,                                                       // 720, 60p to 50p
    2, 1,                                                          // 625 and 525
};

/// OrvaChannelStatus by ChannelStatus, "nochannel" to "timedelay".
constexpr uint8_t exported_statuses[] = {0, 1, 2, 1, 3, 4, 4, 1, 0};

/// @p value where it is below @p end, else 0.
constexpr uint32_t table (uint32_t value, uint32_t end) {
  return value < end ? value : 0;
}

/// The same, and an assertion failure where it is not below.
uint32_t checked (uint32_t value, uint32_t end) {
  if (value >= end)
    KELVANE_ASSERT (0);
  return table (value, end);
}

constexpr uint32_t bit (uint32_t value, uint32_t n) {
  return (value >> n) & 1;
}

// Templates, so that only the branch for this platform's orva_char is compiled.

template <class Unit>
AString decoded (const Unit *text) {
  if constexpr (std::is_same_v<Unit, wchar_t>)
    return AString::from_wide (text);
  else
    return AString::from_utf16 (text);
}

template <class Unit>
void encode (const AString &text, Unit *units, uint32_t count) {
  if constexpr (std::is_same_v<Unit, wchar_t>)
    text.copy_wchar_z (units, count);
  else
    text.copy_utf16_z (units, count);
}

constexpr bool is_high_surrogate (char16_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

} // namespace

uint32_t channel_argument (uint32_t channel) {
  return table (channel, exported_channels);
}

QUILL3::ChannelSet channel_set_from_mask (uint32_t mask) {
  QUILL3::ChannelSet set;
  for (uint32_t n = 0; n < exported_channels; ++n)
    if (bit (mask, n))
      set.add (channel_argument (n));
  return set;
}

uint32_t repeat_to_wire (uint32_t repeat) {
  return table (repeat, 5);
}

uint32_t playback_to_wire (uint32_t playback) {
  return table (playback, exported_playbacks) + first_exported_playback;
}

uint32_t precue_condition_to_wire (uint32_t condition) {
  return table (condition, 4);
}

uint32_t drop_frame_to_wire (uint32_t flag) {
  return table (flag, 2);
}

uint32_t transition_type_to_wire (uint32_t type) {
  return checked (type, 2);
}

uint32_t follow_speed_to_wire (uint32_t speed) {
  return checked (speed, 4);
}

uint32_t timecode_source_to_wire (uint32_t source) {
  return checked (source, 4);
}

bool min_latency_wanted (uint32_t flag) {
  return flag == 1;
}

bool auto_ee_to_wire (uint32_t mode) {
  return mode != 1;
}

uint16_t edit_mask_to_wire (uint32_t bits) {
  uint32_t mask = 0;
  if (bit (bits, 0))
    mask |= edit_bit_0;
  if (bit (bits, 1))
    mask |= edit_bit_1;
  if (bit (bits, 2))
    mask |= edit_bit_2;
  return static_cast<uint16_t> (mask);
}

QUILL3::TrackSet track_set_from_mask (uint32_t mask, bool with_timecode) {
  QUILL3::TrackSet set;
  if (bit (mask, 0))
    set.add (track_video);
  if (bit (mask, 0) && with_timecode)
    set.add (track_timecode);
  if (bit (mask, 1))
    set.add (track_key);
  if (bit (mask, 2))
    set.add (track_audio);
  return set;
}

Kelvane::fixed speed_to_wire (double speed) {
  if (std::isnan (speed))
    return Kelvane::fixed{INT32_MIN};
  const double held = speed < -fastest ? -fastest : speed > fastest ? fastest : speed;
  return Kelvane::fixed{static_cast<int32_t> (held * fixed_one)};
}

uint32_t repeat_from_wire (uint32_t loop) {
  return table (loop, 5);
}

// Below: numbers under the first of a table wrap around and so fall out of it too.

uint32_t playback_from_wire (uint32_t playback) {
  return table (playback - first_exported_playback, exported_playbacks);
}

uint32_t channel_status_from_wire (uint32_t status) {
  return status < std::size (exported_statuses) ? exported_statuses[status] : 0;
}

uint32_t timecode_source_from_wire (uint32_t source) {
  return checked (source, 4);
}

uint32_t video_frequency_from_wire (uint32_t rate) {
  return table (rate, 5);
}

uint32_t video_resolution_from_wire (uint32_t resolution) {
  return table (resolution - first_exported_resolution, 4);
}

uint32_t video_standard_from_wire (uint32_t standard) {
  return table (standard - first_exported_standard, 10);
}

uint32_t auto_ee_from_wire (bool automatic) {
  return automatic ? 0 : 1;
}

uint32_t edit_mask_from_wire (uint16_t mask) {
  return ((mask & edit_bit_0) != 0 ? 1u : 0u) | ((mask & edit_bit_1) != 0 ? 2u : 0u) |
         ((mask & edit_bit_2) != 0 ? 4u : 0u);
}

double speed_from_wire (Kelvane::fixed speed) {
  return speed.raw / fixed_one;
}

bool standard_has_rate (uint32_t standard) {
  return standard < std::size (rates) && rates[standard] != no_rate;
}

uint32_t standard_rate (uint32_t standard) {
  if (standard_has_rate (standard))
    return rates[standard];
  KELVANE_ASSERT (0);
  return 1;
}

bool rate_is_drop_frame (uint32_t rate_class) {
  if (rate_class > 4)
    KELVANE_ASSERT (0);
  return rate_class == 1;
}

bool standard_is_drop_frame (uint32_t standard) {
  return rate_is_drop_frame (standard_rate (standard));
}

AString text_argument (const orva_char *text) {
  return decoded (text);
}

std::u16string units_argument (const orva_char *text) {
  return text_argument (text).to_u16string ();
}

void fill_string_buffer (const AString &text, OrvaStringBuffer buffer) {
  if (buffer.capacity != 0)
    encode (text, buffer.text, buffer.capacity);
}

void fill_string_buffer (std::u16string_view text, OrvaStringBuffer buffer) {
  if (buffer.capacity == 0 || !KELVANE_ASSERT (buffer.text != nullptr))
    return;
  size_t count = std::min<size_t> (text.size (), buffer.capacity - 1);
  if (count != 0 && count != text.size () && is_high_surrogate (text[count - 1]))
    --count;
  std::copy_n (text.begin (), count, buffer.text);
  buffer.text[count] = 0;
}

} // namespace typehelp
