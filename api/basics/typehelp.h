#pragma once

#include "base/astring.h"
#include "base/fixed.h"
#include "orva.h"
#include "schema/tags.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Conversions between the plain numbers of the exported functions and the values of the protocol. No state;
/// any thread. A number outside a conversion's range silently becomes 0, unless the conversion is `checked`:
/// then it is an assertion failure first.
namespace typehelp {

/// Number of channels that callers know.
inline constexpr uint32_t exported_channels = 8;

// Exported number to protocol value.

/// 0 to 7 as they are; any other channel is channel 0.
// C15: doc/compatibility.md
uint32_t channel_argument (uint32_t channel);

/// The low 8 bits are the angle.
// C23: doc/compatibility.md
inline uint8_t angle_argument (uint32_t angle) {
  return static_cast<uint8_t> (angle);
}

/// The channels whose bits 0 to 7 are set, from bit 0 up. Higher bits are ignored.
// C16: doc/compatibility.md
QUILL3::ChannelSet channel_set_from_mask (uint32_t mask);

/// `Loop`, 0 to 4. The protocol has two more values, which no caller can send.
// C19: doc/compatibility.md
uint32_t repeat_to_wire (uint32_t repeat);

/// `Playback`: 0 and 1 become 1 "field" and 2 "f12"; any other number becomes 1.
// C45: doc/compatibility.md
uint32_t playback_to_wire (uint32_t playback);

/// `PrecueCondition`, 0 to 3. The protocol has one more value, which no caller can send.
// C19: doc/compatibility.md
uint32_t precue_condition_to_wire (uint32_t condition);

/// `DropFrameFlag`, 0 drop frame and 1 non-drop.
// C46: doc/compatibility.md
uint32_t drop_frame_to_wire (uint32_t flag);

/// `TransitionType`, 0 and 1. Checked.
// C20: doc/compatibility.md
uint32_t transition_type_to_wire (uint32_t type);

/// `FollowSpeed`, 0 to 3. Checked.
// C20: doc/compatibility.md
uint32_t follow_speed_to_wire (uint32_t speed);

/// `TimecodeSource`, 0 to 3. Checked.
// C20: doc/compatibility.md
uint32_t timecode_source_to_wire (uint32_t source);

/// True for exactly 1.
// C17: doc/compatibility.md
bool min_latency_wanted (uint32_t flag);

/// `AutoEE`: false for exactly 1. It is reversed on purpose, because the exported mode 1 means manual.
// C18: doc/compatibility.md
bool auto_ee_to_wire (uint32_t mode);

/// `SonyEditMask`: bit 0 becomes 0x10, bit 1 becomes 0x20, bit 2 becomes 0x3CF.
// C22: doc/compatibility.md
uint16_t edit_mask_to_wire (uint32_t bits);

/// Bit 0 video and, with @p with_timecode, timecode; bit 1 key; bit 2 audio, in this order.
// C40: doc/compatibility.md
QUILL3::TrackSet track_set_from_mask (uint32_t mask, bool with_timecode);

/// Limited to -200.0 to 200.0 and cut toward zero to steps of 1/65536. A value that is not a number becomes
/// the smallest value, as the processor converts it.
// C21: doc/compatibility.md
Kelvane::fixed speed_to_wire (double speed);

// Protocol value to exported number.

/// `Loop` 0 to 4; "auto" and "record" read as 0.
// C19: doc/compatibility.md
uint32_t repeat_from_wire (uint32_t loop);

/// `Playback` 1 "field" and 2 "f12" give 0 and 1; "auto" reads as 0.
uint32_t playback_from_wire (uint32_t playback);

/// `ChannelStatus`: 0 no channel, 1 stopped, 2 cueing, 3 playing, 4 recording. "timedelay" reads as no
/// channel.
// C32: doc/compatibility.md
uint32_t channel_status_from_wire (uint32_t status);

/// `TimecodeSource` 0 to 3. Checked.
uint32_t timecode_source_from_wire (uint32_t source);

/// `VideoRate` 0 to 4, "60" to "47_95".
// C42: doc/compatibility.md
uint32_t video_frequency_from_wire (uint32_t rate);

/// `VideoResolution` 2 to 5, "1080i" to "525i", give 0 to 3.
// C42: doc/compatibility.md
uint32_t video_resolution_from_wire (uint32_t resolution);

/// `VideoStandard` 17 to 26, "1080_60i" to "525_59_94i", give 0 to 9.
// C42: doc/compatibility.md
uint32_t video_standard_from_wire (uint32_t standard);

/// 1 for false, 0 for true.
uint32_t auto_ee_from_wire (bool automatic);

/// Bit 0 from 0x10, bit 1 from 0x20, bit 2 set if any bit of 0x3CF is.
// C22: doc/compatibility.md
uint32_t edit_mask_from_wire (uint16_t mask);

/// The bits as a signed number, divided by 65536.
double speed_from_wire (Kelvane::fixed speed);

// Drop frame of a video standard.

/// Whether standard_rate() knows the `VideoStandard`.
bool standard_has_rate (uint32_t standard);

/// The rate class of a `VideoStandard`: 0 is 60, 1 is 59.94, 2 is 50, 3 is 48, 4 is 47.95. Any other
/// standard, "1080_30p" for instance, is an assertion failure and, unlike everything else here, returns 1.
uint32_t standard_rate (uint32_t standard);

/// True for rate class 1. A number above 4 is an assertion failure and returns false.
bool rate_is_drop_frame (uint32_t rate_class);

/// Whether a `VideoStandard` has drop frame, by its rate class.
bool standard_is_drop_frame (uint32_t standard);

// Text across the exported interface.

/// A text argument of an exported function. It ends at the first unit that is not valid UTF-16. Null is an
/// assertion failure and becomes the empty text.
// C14: doc/compatibility.md
AString text_argument (const orva_char *text);

/// The same as UTF-16 units, which are always valid.
std::u16string units_argument (const orva_char *text);

/// Copies at most capacity - 1 units, cut between two characters, and a terminator. Nothing for capacity 0.
// C12: doc/compatibility.md
void fill_string_buffer (const AString &text, OrvaStringBuffer buffer);

/// The same for valid UTF-16. Allocates nothing.
void fill_string_buffer (std::u16string_view text, OrvaStringBuffer buffer);

} // namespace typehelp
