#pragma once

#include "schema/records.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// Commands that move, load and set channels. A gang command addresses several channels at once. See
/// commands.h.
namespace QUILL3::command {

/// Moves by a distance.
struct jog {
  uint32_t Channel{};    ///< enumeration Channel
  int32_t JogDistance{}; ///< fields, signed
  bool MinLatency{};
};
inline constexpr Field jog_rows[] = {FIELD (jog, Channel), FIELD (jog, JogDistance), FIELD (jog, MinLatency)};
RECORD (jog, jog_rows);

/// Moves by a distance.
struct gang_jog {
  QUILL3::ChannelSet ChannelSet{};
  int32_t JogDistance{}; ///< fields, signed
  bool MinLatency{};
};
inline constexpr Field gang_jog_rows[] = {FIELD (gang_jog, ChannelSet), FIELD (gang_jog, JogDistance),
                                          FIELD (gang_jog, MinLatency)};
RECORD (gang_jog, gang_jog_rows);

/// Goes to a position.
struct gotocmd {
  uint32_t Channel{};      ///< enumeration Channel
  uint32_t GotoPosition{}; ///< in fields
  bool MinLatency{};
};
inline constexpr Field gotocmd_rows[] = {FIELD (gotocmd, Channel), FIELD (gotocmd, GotoPosition),
                                         FIELD (gotocmd, MinLatency)};
RECORD (gotocmd, gotocmd_rows);

/// Goes to a position.
struct gang_gotocmd {
  QUILL3::ChannelSet ChannelSet{};
  uint32_t GotoPosition{}; ///< in fields
  bool MinLatency{};
};
inline constexpr Field gang_gotocmd_rows[] = {
    FIELD (gang_gotocmd, ChannelSet), FIELD (gang_gotocmd, GotoPosition), FIELD (gang_gotocmd, MinLatency)};
RECORD (gang_gotocmd, gang_gotocmd_rows);

/// Goes to a position at a speed.
struct go_at {
  uint32_t Channel{};              ///< enumeration Channel
  uint32_t GotoPosition{};         ///< in fields
  AOption<Kelvane::fixed> Speed{}; ///< 1 is normal forward play
  bool MinLatency{};
};
inline constexpr Field go_at_rows[] = {FIELD (go_at, Channel), FIELD (go_at, GotoPosition),
                                       FIELD (go_at, Speed), FIELD (go_at, MinLatency)};
RECORD (go_at, go_at_rows);

/// Goes to a position at a speed.
struct gang_go_at {
  QUILL3::ChannelSet ChannelSet{};
  uint32_t GotoPosition{};         ///< in fields
  AOption<Kelvane::fixed> Speed{}; ///< 1 is normal forward play
  bool MinLatency{};
};
inline constexpr Field gang_go_at_rows[] = {FIELD (gang_go_at, ChannelSet), FIELD (gang_go_at, GotoPosition),
                                            FIELD (gang_go_at, Speed), FIELD (gang_go_at, MinLatency)};
RECORD (gang_go_at, gang_go_at_rows);

/// Starts or stops recording into the tracks of the mask.
struct insert_edit {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t SonyEditMask{};
};
inline constexpr Field insert_edit_rows[] = {FIELD (insert_edit, Channel), FIELD (insert_edit, SonyEditMask)};
RECORD (insert_edit, insert_edit_rows);

/// Starts or stops recording into the tracks of the mask.
struct gang_insert_edit {
  QUILL3::ChannelSet ChannelSet{};
  uint16_t SonyEditMask{};
};
inline constexpr Field gang_insert_edit_rows[] = {FIELD (gang_insert_edit, ChannelSet),
                                                  FIELD (gang_insert_edit, SonyEditMask)};
RECORD (gang_insert_edit, gang_insert_edit_rows);

/// Passes the input through on the tracks of the mask.
struct ee {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t SonyEditMask{};
  bool AutoEE{};
};
inline constexpr Field ee_rows[] = {FIELD (ee, Channel), FIELD (ee, SonyEditMask), FIELD (ee, AutoEE)};
RECORD (ee, ee_rows);

/// Passes the input through on the tracks of the mask.
struct gang_ee {
  QUILL3::ChannelSet ChannelSet{};
  uint16_t SonyEditMask{};
  bool AutoEE{};
};
inline constexpr Field gang_ee_rows[] = {FIELD (gang_ee, ChannelSet), FIELD (gang_ee, SonyEditMask),
                                         FIELD (gang_ee, AutoEE)};
RECORD (gang_ee, gang_ee_rows);

/// Starts playing.
struct play {
  uint32_t Channel{};              ///< enumeration Channel
  AOption<Kelvane::fixed> Speed{}; ///< 1 is normal forward play
  bool MinLatency{};
};
inline constexpr Field play_rows[] = {FIELD (play, Channel), FIELD (play, Speed), FIELD (play, MinLatency)};
RECORD (play, play_rows);

/// Starts playing.
struct gang_play {
  QUILL3::ChannelSet ChannelSet{};
  AOption<Kelvane::fixed> Speed{}; ///< 1 is normal forward play
  bool MinLatency{};
};
inline constexpr Field gang_play_rows[] = {FIELD (gang_play, ChannelSet), FIELD (gang_play, Speed),
                                           FIELD (gang_play, MinLatency)};
RECORD (gang_play, gang_play_rows);

/// Stops.
struct stop {
  uint32_t Channel{}; ///< enumeration Channel
  bool MinLatency{};
};
inline constexpr Field stop_rows[] = {FIELD (stop, Channel), FIELD (stop, MinLatency)};
RECORD (stop, stop_rows);

/// Stops.
struct gang_stop {
  QUILL3::ChannelSet ChannelSet{};
  bool MinLatency{};
};
inline constexpr Field gang_stop_rows[] = {FIELD (gang_stop, ChannelSet), FIELD (gang_stop, MinLatency)};
RECORD (gang_stop, gang_stop_rows);

/// Loads a clip or, by its scope, a virtual clip.
struct cue_clip {
  uint32_t Channel{}; ///< enumeration Channel
  AString ClipID{};
  AOption<uint32_t> Loop{};         ///< enumeration Loop
  AOption<uint32_t> GotoPosition{}; ///< in fields
  AOption<uint32_t> ClipPosition{}; ///< in fields
  AOption<uint8_t> Angle{};
  AOption<uint32_t> Playback{};    ///< enumeration Playback
  AOption<Kelvane::fixed> Speed{}; ///< 1 is normal forward play
  AOption<uint32_t> ClipScope{};   ///< enumeration ClipScope
  AOption<uint32_t> LoopIn{};      ///< in fields
  AOption<uint32_t> LoopOut{};     ///< in fields
  bool BlackOnCue{};
};
inline constexpr Field cue_clip_rows[] = {
    FIELD (cue_clip, Channel),      FIELD (cue_clip, ClipID),       FIELD (cue_clip, Loop),
    FIELD (cue_clip, GotoPosition), FIELD (cue_clip, ClipPosition), FIELD (cue_clip, Angle),
    FIELD (cue_clip, Playback),     FIELD (cue_clip, Speed),        FIELD (cue_clip, ClipScope),
    FIELD (cue_clip, LoopIn),       FIELD (cue_clip, LoopOut),      FIELD (cue_clip, BlackOnCue)};
RECORD (cue_clip, cue_clip_rows);

/// Prepares a clip to follow the one that is loaded.
struct precue {
  uint32_t Channel{}; ///< enumeration Channel
  AString ClipID{};
  AOption<uint32_t> PrecueCondition{}; ///< enumeration PrecueCondition
  AOption<uint32_t> GotoPosition{};    ///< in fields
  AOption<uint32_t> ClipLength{};      ///< in fields
  AOption<uint8_t> Angle{};
  AOption<uint32_t> LoopIn{};  ///< in fields
  AOption<uint32_t> LoopOut{}; ///< in fields
  AOption<uint32_t> Loop{};    ///< enumeration Loop
  bool MinLatency{};
};
inline constexpr Field precue_rows[] = {
    FIELD (precue, Channel),      FIELD (precue, ClipID),     FIELD (precue, PrecueCondition),
    FIELD (precue, GotoPosition), FIELD (precue, ClipLength), FIELD (precue, Angle),
    FIELD (precue, LoopIn),       FIELD (precue, LoopOut),    FIELD (precue, Loop),
    FIELD (precue, MinLatency)};
RECORD (precue, precue_rows);

/// Drops what is prepared.
struct precue_clear {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field precue_clear_rows[] = {FIELD (precue_clear, Channel)};
RECORD (precue_clear, precue_clear_rows);

/// Switches to what is prepared.
struct precue_activate {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field precue_activate_rows[] = {FIELD (precue_activate, Channel)};
RECORD (precue_activate, precue_activate_rows);

/// Switches to what is prepared.
struct gang_precue_activate {
  QUILL3::ChannelSet ChannelSet{};
};
inline constexpr Field gang_precue_activate_rows[] = {FIELD (gang_precue_activate, ChannelSet)};
RECORD (gang_precue_activate, gang_precue_activate_rows);

/// Unloads.
struct unload {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field unload_rows[] = {FIELD (unload, Channel)};
RECORD (unload, unload_rows);

/// Sets how the end of the clip is passed.
struct set_loop {
  uint32_t Channel{}; ///< enumeration Channel
  uint32_t Loop{};    ///< enumeration Loop
};
inline constexpr Field set_loop_rows[] = {FIELD (set_loop, Channel), FIELD (set_loop, Loop)};
RECORD (set_loop, set_loop_rows);

/// Sets the beginning of the loop.
struct set_loop_in {
  uint32_t Channel{}; ///< enumeration Channel
  uint32_t LoopIn{};  ///< in fields
};
inline constexpr Field set_loop_in_rows[] = {FIELD (set_loop_in, Channel), FIELD (set_loop_in, LoopIn)};
RECORD (set_loop_in, set_loop_in_rows);

/// Takes away the beginning of the loop.
struct clear_loop_in {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field clear_loop_in_rows[] = {FIELD (clear_loop_in, Channel)};
RECORD (clear_loop_in, clear_loop_in_rows);

/// Sets the end of the loop.
struct set_loop_out {
  uint32_t Channel{}; ///< enumeration Channel
  uint32_t LoopOut{}; ///< in fields
};
inline constexpr Field set_loop_out_rows[] = {FIELD (set_loop_out, Channel), FIELD (set_loop_out, LoopOut)};
RECORD (set_loop_out, set_loop_out_rows);

/// Takes away the end of the loop.
struct clear_loop_out {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field clear_loop_out_rows[] = {FIELD (clear_loop_out, Channel)};
RECORD (clear_loop_out, clear_loop_out_rows);

/// Takes away the out point.
struct clear_out_point {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field clear_out_point_rows[] = {FIELD (clear_out_point, Channel)};
RECORD (clear_out_point, clear_out_point_rows);

/// Sets the out point.
struct set_out_point {
  uint32_t Channel{};      ///< enumeration Channel
  uint32_t ClipPosition{}; ///< in fields
};
inline constexpr Field set_out_point_rows[] = {FIELD (set_out_point, Channel),
                                               FIELD (set_out_point, ClipPosition)};
RECORD (set_out_point, set_out_point_rows);

/// Takes a channel away from whoever has it, to play or to record.
struct steal_channel {
  uint32_t Channel{};      ///< enumeration Channel
  uint32_t PlayOrRecord{}; ///< enumeration PlayOrRecord
  AOption<AString> StealClient{};
};
inline constexpr Field steal_channel_rows[] = {
    FIELD (steal_channel, Channel), FIELD (steal_channel, PlayOrRecord), FIELD (steal_channel, StealClient)};
RECORD (steal_channel, steal_channel_rows);

/// Gives back what was taken with steal_channel.
struct unsteal_channel {};
RECORD (unsteal_channel, no_fields);

/// Shows what is being recorded, on request of a clip and angle and with a delay.
struct go_live {
  uint32_t Channel{}; ///< enumeration Channel
  AOption<AString> ClipID{};
  AOption<uint8_t> Angle{};
  AOption<uint32_t> TimeDelay{};
  bool MinLatency{};
};
inline constexpr Field go_live_rows[] = {FIELD (go_live, Channel), FIELD (go_live, ClipID),
                                         FIELD (go_live, Angle), FIELD (go_live, TimeDelay),
                                         FIELD (go_live, MinLatency)};
RECORD (go_live, go_live_rows);

/// Changes to another angle of the clip.
struct iso_angle {
  uint32_t Channel{}; ///< enumeration Channel
  uint8_t Angle{};
};
inline constexpr Field iso_angle_rows[] = {FIELD (iso_angle, Channel), FIELD (iso_angle, Angle)};
RECORD (iso_angle, iso_angle_rows);

/// Exchanges program and preview.
struct take {
  uint32_t Channel{};                     ///< enumeration Channel
  AOption<uint32_t> TransitionType{};     ///< enumeration TransitionType
  AOption<uint32_t> TransitionDuration{}; ///< in fields
  AOption<uint32_t> FollowSpeed{};        ///< enumeration FollowSpeed
};
inline constexpr Field take_rows[] = {FIELD (take, Channel), FIELD (take, TransitionType),
                                      FIELD (take, TransitionDuration), FIELD (take, FollowSpeed)};
RECORD (take, take_rows);

/// Asks where the channel is.
struct get_current_timecode {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field get_current_timecode_rows[] = {FIELD (get_current_timecode, Channel)};
RECORD (get_current_timecode, get_current_timecode_rows);

} // namespace QUILL3::command

#pragma GCC diagnostic pop
