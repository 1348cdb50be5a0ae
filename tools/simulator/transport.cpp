#include "transport.h"

#include <algorithm>
#include <limits>

namespace sim {

namespace {

constexpr int every_track = 0x3FF;

} // namespace

std::uint32_t Transport::last_field () const {
  return cue.content.length == 0 ? 0 : cue.content.length - 1;
}

bool Transport::recording () const {
  return playing_ && edit_mask != 0 && cue.content.source == Source::clip;
}

int Transport::status () const {
  if (!loaded ())
    return status_idle;
  if (cueing_left_ > 0)
    return status_cueing;
  if (recording ())
    return edit_mask == every_track ? status_record : status_insert;
  if (!playing_)
    return status_stop;
  return cue.content.source == Source::live ? status_timedelay : status_play;
}

Fixed Transport::speed () const {
  return cueing_left_ > 0 ? 0 : speed_when_cued ();
}

Fixed Transport::speed_when_cued () const {
  if (!playing_)
    return 0;
  return backwards_ && speed_ != std::numeric_limits<Fixed>::min () ? -speed_ : speed_;
}

void Transport::load (const Cue &what) {
  cue = what;
  place_ = std::int64_t{cue.in} << 16;
  playing_ = false;
  backwards_ = false;
  speed_ = fixed_one;
  cueing_left_ = 1;
  edit_mask = 0;
}

void Transport::unload () {
  cue = {};
  place_ = 0;
  playing_ = false;
  cueing_left_ = 0;
  transition_left_ = 0;
  edit_mask = 0;
  precued.clear ();
}

void Transport::renew (const Content &content) {
  if (unstored && unstored->clip == content.name)
    unstored = Recording{content.name, content.length, content.length};
  cue.content = content;
  place_ = std::min (place_, std::int64_t{last_field ()} << 16);
}

void Transport::play (Fixed speed) {
  playing_ = true;
  backwards_ = false;
  speed_ = speed;
}

void Transport::stop () {
  playing_ = false;
}

void Transport::go_to (std::uint32_t field) {
  playing_ = false;
  place_ = std::int64_t{std::min (field, last_field ())} << 16;
}

void Transport::jog (std::int32_t distance) {
  const std::int64_t field =
      std::clamp<std::int64_t> (std::int64_t{position ()} + distance, 0, last_field ());
  go_to (static_cast<std::uint32_t> (field));
}

Transport::Range Transport::fields (std::uint32_t first, std::uint32_t last) const {
  last = std::min (last, last_field ());
  return {std::int64_t{std::min (first, last)} << 16, (std::int64_t{last} + 1) << 16};
}

Transport::Range Transport::loop_range () const {
  const std::uint32_t out = cue.loop_out.value_or (last_field ());
  return cue.loop_in <= out ? fields (cue.loop_in, out) : fields (0, last_field ());
}

bool Transport::pass_field () {
  if (transition_left_ > 0)
    --transition_left_;
  if (cueing_left_ > 0) {
    --cueing_left_;
    return false;
  }
  return playing_ && move ();
}

bool Transport::move () {
  const std::int64_t next = place_ + speed ();
  if (recording ())
    return record (next);
  const bool before_out = place_ < behind_out ();
  const Range whole = fields (0, before_out ? cue.out.value_or (last_field ()) : last_field ());
  if (loops ())
    return move_in_loop (next, fields (0, last_field ()));
  if (next >= whole.low && next < whole.high) {
    place_ = next;
    return false;
  }
  place_ = next < whole.low ? whole.low : whole.high - fixed_one;
  return true;
}

// A clip that is precued with `end_of_clip2` ends the loop.
bool Transport::loops () const {
  const bool awaited = !precued.empty () && precued.front ().condition == precue_end_of_clip2;
  return cue.loop != loop_off && cue.loop != loop_auto && !awaited;
}

// In these modes a channel outside the loop plays up to the loop. In the others it jumps into the loop.
bool Transport::enters_freely () const {
  return cue.loop == loop_to || cue.loop == loop_pingpong_to;
}

bool Transport::move_in_loop (std::int64_t next, Range whole) {
  const Range range = loop_range ();
  const bool inside = place_ >= range.low && place_ < range.high;
  if (!inside && !enters_freely ()) {
    place_ = speed () < 0 ? range.high - fixed_one : range.low;
    return false;
  }
  const bool leaves =
      inside ? next < range.low || next >= range.high : next < whole.low || next >= whole.high;
  if (!leaves)
    place_ = next;
  else if (cue.loop == loop_pingpong || cue.loop == loop_pingpong_to)
    reflect (next, range);
  else
    wrap (next, range);
  return false;
}

void Transport::wrap (std::int64_t next, Range range) {
  const std::int64_t span = range.high - range.low;
  const std::int64_t beyond = (next - range.low) % span;
  place_ = range.low + (beyond < 0 ? beyond + span : beyond);
}

void Transport::reflect (std::int64_t next, Range range) {
  const std::int64_t last = range.high - fixed_one;
  backwards_ = !backwards_;
  place_ = std::clamp (next < range.low ? 2 * range.low - next : 2 * last - next, range.low, last);
}

// The place after the out point. Without an out point, a place that is never reached.
std::int64_t Transport::behind_out () const {
  return cue.out ? (std::int64_t{*cue.out} + 1) << 16 : std::numeric_limits<std::int64_t>::max ();
}

// A recording ends at the out point. At the end of the clip it goes on and makes the clip longer. It ignores
// loops.
bool Transport::record (std::int64_t next) {
  constexpr std::int64_t most_fields = 0xFFFFFFFF;
  if (!unstored)
    unstored = Recording{cue.content.name, cue.content.length, cue.content.length};
  if (place_ < behind_out () && next >= behind_out ())
    return true;
  if ((next >> 16) >= most_fields)
    return true;
  place_ = next;
  cue.content.length = std::max (cue.content.length, position () + 1);
  unstored->length = cue.content.length;
  return false;
}

} // namespace sim
