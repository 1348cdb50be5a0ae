#pragma once

namespace sim {

// Words of the protocol that the simulator uses in decisions, by their numbers in the vocabulary.

enum TrackType : int { track_video, track_key, track_audio, track_timecode };
enum LoopMode : int { loop_off, loop_loop, loop_to, loop_pingpong, loop_pingpong_to, loop_auto, loop_record };
enum ChannelStatus : int {
  status_nochannel,
  status_idle,
  status_cueing,
  status_stop,
  status_play,
  status_record,
  status_insert,
  status_testpattern,
  status_timedelay
};
enum ChannelReport : int {
  report_status,
  report_clipid,
  report_speed,
  report_timecode,
  report_info,
  report_listplay,
  report_chaseplay,
  report_aux_audio,
  channel_report_count
};
enum PrecueCondition : int {
  precue_explicit,
  precue_previous_stops,
  precue_immediate,
  precue_end_of_clip,
  precue_end_of_clip2
};
enum AtStart : int { start_play, start_pause };
enum AtEnd : int { end_take, end_pause, end_loop };
enum ChaseAtEnd : int { chase_black, chase_pause, chase_loop };
enum Roll : int { roll_cueonly, roll_roll };
enum ListPlayMode : int { list_single, list_pgm_pvw };
enum TransitionType : int { transition_cut, transition_dissolve };
enum FollowSpeed : int { follow_none, follow_smart, follow_one, follow_follow };
enum ClipScope : int { scope_clip, scope_vclip };
enum StealStatus : int { steal_available, steal_import, steal_export };

} // namespace sim
