#include "vocabulary.h"

#include <algorithm>
#include <unordered_map>

namespace sim {

namespace {

struct WordsRow {
  std::string_view tags;
  std::string_view words;
};
struct RecordRow {
  std::string_view tags;
  std::string_view parts; ///< in order, `?` after the optional ones
};
struct ListRow {
  std::string_view tag;
  std::string_view element;
  std::size_t capacity;
};
struct ScalarRow {
  Form form;
  std::string_view tags;
};
struct CommandRow {
  std::string_view name;
  std::string_view parts; ///< in order, `?` after the optional ones
};

constexpr WordsRow words_rows[] = {
    {"Channel ProgramChannel PreviewChannel", "A B C D E F G H I J K L"},
    {"ChannelStatus", "nochannel idle cueing stop play record insert testpattern timedelay"},
    {"Loop", "off loop loopto pingpong pingpongto auto record"},
    {"Playback", "auto field f12"},
    {"Interp", "auto on off"},
    {"ReportType", "clip_change config_change disk_space temperature melt directory_change playlist_change "
                   "chaselist_change export alerts chase_ltc_timecode ltc_input"},
    {"ChannelReportType", "status clipid speed timecode info listplay chaseplay aux_audio_timecode"},
    {"TrackType", "video key audio timecode"},
    {"SpecialClipType", "normal iso2 iso3 iso4 iso5 iso6 iso7 iso8 ssm2 ssm3"},
    {"ErrorCode", "general clipnotfound configname_invalid configvalue_invalid"},
    {"TimecodeSource", "zerobased striped rectc rec0_stripe"},
    {"CompressionType", "jpeg2000 dv avci xavc"},
    {"StealStatus", "available import export"},
    {"ReferenceSource", "input1 input2 refin refsdhd freerun"},
    {"VideoStandard",
     "4K_60p 4K_59_94p 4K_50p 4K_30p 4K_29_97p 4K_25p 4K_24p 4K_23_98p 1080_60p 1080_59_94p "
     "1080_50p 1080_30p 1080_29_97p 1080_25p 1080_24p 1080_23_98p 1080_23_98psf 1080_60i "
     "1080_59_94i 1080_50i 1080_48i 1080_47_95i 720_60p 720_59_94p 720_50p 625_50i 525_59_94i"},
    {"VideoRate", "60 59_94 50 48 47_95 30 29_97 25 24 23_98"},
    {"VideoResolution", "4K 1080p 1080i 720p 625i 525i"},
    {"PlayOrRecord", "play record"},
    {"DropFrameFlag", "df ndf"},
    {"PrecueCondition", "explicit_switch previous_stops immediate end_of_clip end_of_clip2"},
    {"ConfigurationItemAccess", "user eng"},
    {"ListElementAtStart", "play pause"},
    {"ListElementAtEnd", "take pause loop"},
    {"Layer", "normal bed"},
    {"ChaseElementAtEnd", "black pause loop"},
    {"Roll", "cueonly roll"},
    {"ListPlayMode", "single_channel pgm_pvw"},
    {"TransitionType", "cut dissolve"},
    {"FollowSpeed", "none smart oneX follow"},
    {"ClipScope", "clip vclip"},
    {"AlertingPriority", "harmful malfunction"},
    {"AlertingLevel", "na ok warning error"},
    {"ModifiedFlag", "unmodified modified"},
};

constexpr RecordRow record_rows[] = {
    {"Timecode StripeTimecode DisplayTimecode InputTimecode",
     "Valid VideoStandard? FieldNumber? DropFrameFlag?"},
    {"SmallTimecode Frame0Timecode", "FieldNumber? DropFrameFlag?"},
    {"TrackInfo", "TrackType TrimStart?"},
    {"TrackAttr", "TrackType? TrimStart?"},
    {"Metadata", "Key Value"},
    {"ClipAttrChange",
     "ID8? Title? Creator? Project? Playback? Interp? Loop? LoopOut? LoopIn? TimecodeSource? StripeTimecode? "
     "MetadataList? KeyList? TrimStart? TrimEnd? TrackAttrVector? Frame0Timecode?"},
    {"EEStatus", "SonyEditMask AutoEE"},
    {"ContentID", "ClipID? VClipID?"},
    {"Transition", "TransitionType TransitionDuration?"},
    {"ListElement",
     "ContentID GotoPosition? ClipPosition? Speed? Angle? ListElementAtStart? ListElementAtEnd? "
     "Transition?"},
    {"ChaseElement",
     "ContentID GotoPosition? ClipPosition? Speed? Angle? ChaseElementAtEnd? ClipStartOffset? "
     "TcStartTrigger?"},
    {"ListElementChange", "ListElementAtStart? ListElementAtEnd? Transition?"},
    {"ChaseElementChange", "ChaseElementAtEnd? TcStartTrigger? ClipStartOffset?"},
};

constexpr ListRow list_rows[] = {
    {"TrackInfoVector", "TrackInfo", 17},
    {"TrackAttrVector", "TrackAttr", 12},
    {"ConfigurationItemAllowedValues", "ConfigurationItemValue", 64},
    {"ChannelSet", "Channel", 12},
    {"ReportSet", "ReportType", 12},
    {"ChannelReportSet", "ChannelReportType", 8},
    {"TrackSet", "TrackType", 4},
    {"KeyList", "Key", 0},
    {"MetadataList", "Metadata", 0},
};

constexpr ScalarRow scalar_rows[] = {
    {Form::text,
     "ClipID ParentClipID DirectoryName FromDir ToDir FromID ToID ListID ChaseID ListFromID ListToID "
     "ChaseFromID ChaseToID ConfigurationItemName ConfigurationItemValue StealClient DebugString "
     "MetadataDatabase MetadataPrefix Filename VClipID Key Value LogFilename LogClient LogText ID8 "
     "Title Creator Project"},
    {Form::u8, "Angle"},
    {Form::u16, "SonyEditMask ListIndex ChaseIndex"},
    {Form::u32,
     "GotoPosition ClipPosition ClipLength LoopIn LoopOut VClipPosition TimeDelay TransitionDuration "
     "LogLine TrimStart TrimEnd ClipStartOffset TcStartTrigger"},
    {Form::i32, "JogDistance VClipDistance FieldNumber"},
    {Form::fixed, "Speed"},
    {Form::boolean, "AutoEE Valid"},
    {Form::flag, "MinLatency BlackOnCue LogError"},
};

constexpr CommandRow command_rows[] = {
    {"report_register", "ReportType"},
    {"report_unregister", "ReportType"},
    {"reports_register", "ReportSet"},
    {"reports_unregister", "ReportSet"},
    {"channel_report_register", "Channel ChannelReportType"},
    {"channel_report_unregister", "Channel ChannelReportType"},
    {"channel_reports_register", "ChannelSet ChannelReportSet"},
    {"channel_reports_unregister", "ChannelSet ChannelReportSet"},
    {"jog", "Channel JogDistance MinLatency?"},
    {"gang_jog", "ChannelSet JogDistance MinLatency?"},
    {"gotocmd", "Channel GotoPosition MinLatency?"},
    {"gang_gotocmd", "ChannelSet GotoPosition MinLatency?"},
    {"go_at", "Channel GotoPosition Speed? MinLatency?"},
    {"gang_go_at", "ChannelSet GotoPosition Speed? MinLatency?"},
    {"insert_edit", "Channel SonyEditMask"},
    {"gang_insert_edit", "ChannelSet SonyEditMask"},
    {"ee", "Channel SonyEditMask AutoEE"},
    {"gang_ee", "ChannelSet SonyEditMask AutoEE"},
    {"play", "Channel Speed? MinLatency?"},
    {"gang_play", "ChannelSet Speed? MinLatency?"},
    {"stop", "Channel MinLatency?"},
    {"gang_stop", "ChannelSet MinLatency?"},
    {"cue_clip",
     "Channel ClipID Loop? GotoPosition? ClipPosition? Angle? Playback? Speed? ClipScope? LoopIn? "
     "LoopOut? BlackOnCue?"},
    {"precue",
     "Channel ClipID PrecueCondition? GotoPosition? ClipLength? Angle? LoopIn? LoopOut? Loop? MinLatency?"},
    {"precue_clear", "Channel"},
    {"precue_activate", "Channel"},
    {"gang_precue_activate", "ChannelSet"},
    {"unload", "Channel"},
    {"set_loop", "Channel Loop"},
    {"set_loop_in", "Channel LoopIn"},
    {"clear_loop_in", "Channel"},
    {"set_loop_out", "Channel LoopOut"},
    {"clear_loop_out", "Channel"},
    {"clear_out_point", "Channel"},
    {"set_out_point", "Channel ClipPosition"},
    {"download_clipids", "DirectoryName?"},
    {"download_directory_names", "DirectoryName?"},
    {"get_clip_info", "ClipID"},
    {"clip_exists", "ClipID"},
    {"modify_clip_attributes", "ClipID ClipAttrChange"},
    {"delete_clip", "ClipID"},
    {"rename_clip", "FromID ToID"},
    {"create_clip", "ClipID TrackSet ClipLength? Channel?"},
    {"create_child_clip", "ClipID ParentClipID Angle?"},
    {"get_computer_name", ""},
    {"get_video_standard", ""},
    {"get_disk_usage", ""},
    {"steal_channel", "Channel PlayOrRecord StealClient?"},
    {"unsteal_channel", ""},
    {"go_live", "Channel ClipID? Angle? TimeDelay? MinLatency?"},
    {"iso_angle", "Channel Angle"},
    {"create_directory", "DirectoryName"},
    {"list_play_next", "Channel ListIndex Roll"},
    {"list_play_now", "Channel ListIndex Roll JogDistance?"},
    {"list_take", "Channel"},
    {"download_metadata", "MetadataDatabase MetadataPrefix?"},
    {"metadata_set", "MetadataDatabase MetadataList MetadataPrefix?"},
    {"metadata_erase", "MetadataDatabase KeyList MetadataPrefix?"},
    {"watch_metadata_database", "MetadataDatabase MetadataPrefix?"},
    {"unwatch_metadata_database", "MetadataDatabase"},
    {"take", "Channel TransitionType? TransitionDuration? FollowSpeed?"},
    {"vclip_create", "VClipID ClipLength"},
    {"vclip_free", "VClipID"},
    {"vclip_modification_start", "VClipID"},
    {"vclip_modification_end", "VClipID"},
    {"vclip_add_segment", "VClipID ClipID ClipPosition TrackSet VClipPosition ClipLength Speed?"},
    {"vclip_clear_segment", "VClipID TrackSet VClipPosition ClipLength"},
    {"vclip_ripple", "VClipID TrackSet VClipPosition VClipDistance"},
    {"vclip_track_enable", "VClipID TrackSet"},
    {"vclip_cfg_tracks", "VClipID ClipID TrackSet"},
    {"get_reference_source", ""},
    {"get_configuration", ""},
    {"get_one_configuration", "ConfigurationItemName"},
    {"set_configuration", "ConfigurationItemName ConfigurationItemValue"},
    {"get_version_info", ""},
    {"debug_label", "DebugString"},
    {"get_compression_info", ""},
    {"download_melts", ""},
    {"rename_dir", "FromDir ToDir"},
    {"download_listids", ""},
    {"download_chaseids", ""},
    {"download_list", "ListID"},
    {"download_chase", "ChaseID"},
    {"list_delete", "ListID"},
    {"chase_delete", "ChaseID"},
    {"list_rename", "ListFromID ListToID"},
    {"chase_rename", "ChaseFromID ChaseToID"},
    {"list_save_start", "ListID"},
    {"list_save_element", "ListElement"},
    {"list_save_end", ""},
    {"chase_save_start", "ChaseID"},
    {"chase_save_element", "ChaseElement"},
    {"chase_save_end", ""},
    {"sending_chase_ltcin", "Timecode"},
    {"list_load", "Channel ListID ListPlayMode? Transition?"},
    {"list_unload", "Channel"},
    {"chase_load", "Channel ChaseID"},
    {"chase_unload", "Channel"},
    {"list_insert", "Channel ListIndex ListElement"},
    {"chase_insert", "Channel ChaseIndex ChaseElement"},
    {"list_bed", "Channel ListElement"},
    {"list_set_loop", "Channel Loop"},
    {"list_remove_item", "Channel ListIndex"},
    {"chase_remove_item", "Channel ChaseIndex"},
    {"list_play_reorder_start", "Channel"},
    {"list_play_reorder_item", "ListIndex"},
    {"list_play_reorder_finish", "ListIndex"},
    {"list_play_clear_modified", "Channel"},
    {"list_play_modify_item", "Channel ListIndex ListElementChange"},
    {"chase_play_reorder_start", "Channel"},
    {"chase_play_reorder_item", "ChaseIndex"},
    {"chase_play_reorder_finish", "ChaseIndex"},
    {"chase_play_clear_modified", "Channel"},
    {"chase_play_modify_item", "Channel ChaseIndex ChaseElementChange"},
    {"export_start", ""},
    {"export_add", "ClipID Filename ClipPosition? ClipLength? Angle?"},
    {"export_end", ""},
    {"export_initiate", "Channel"},
    {"userdict_set", "Key Value"},
    {"userdict_erase", "Key"},
    {"userdict_own", "Key Value"},
    {"userdict_watch", "Key"},
    {"userdict_unwatch", "Key"},
    {"sync", ""},
    {"get_volatile_file_info", "ClipID"},
    {"log", "LogFilename LogLine LogClient LogText LogError?"},
    {"get_current_timecode", "Channel"},
};

std::vector<std::string_view> split (std::string_view text) {
  std::vector<std::string_view> words;
  while (!text.empty ()) {
    const std::size_t end = std::min (text.find (' '), text.size ());
    if (end != 0)
      words.push_back (text.substr (0, end));
    text.remove_prefix (std::min (end + 1, text.size ()));
  }
  return words;
}

std::vector<Part> parts_of (std::string_view text) {
  std::vector<Part> parts;
  for (std::string_view word : split (text)) {
    const bool optional = word.ends_with ('?');
    parts.push_back ({word.substr (0, word.size () - (optional ? 1 : 0)), optional});
  }
  return parts;
}

using Tags = std::unordered_map<std::string_view, Tag>;
using Commands = std::unordered_map<std::string_view, Grammar>;

Tags build_tags () {
  Tags tags;
  for (const WordsRow &row : words_rows)
    for (std::string_view name : split (row.tags))
      tags[name] = {name, Form::word, split (row.words), {}, 0};
  for (const RecordRow &row : record_rows)
    for (std::string_view name : split (row.tags))
      tags[name] = {name, Form::record, {}, parts_of (row.parts), 0};
  for (const ListRow &row : list_rows)
    tags[row.tag] = {row.tag, Form::list, {}, parts_of (row.element), row.capacity};
  for (const ScalarRow &row : scalar_rows)
    for (std::string_view name : split (row.tags))
      tags[name] = {name, row.form, {}, {}, 0};
  return tags;
}

Commands build_commands () {
  Commands commands;
  for (const CommandRow &row : command_rows)
    commands[row.name] = {row.name, parts_of (row.parts)};
  return commands;
}

const Tags &tags () {
  static const Tags &table = *new Tags (build_tags ());
  return table;
}

const Commands &commands () {
  static const Commands &table = *new Commands (build_commands ());
  return table;
}

} // namespace

const Tag *find_tag (std::string_view name) {
  const auto found = tags ().find (name);
  return found == tags ().end () ? nullptr : &found->second;
}

const Grammar *find_command (std::string_view name) {
  const auto found = commands ().find (name);
  return found == commands ().end () ? nullptr : &found->second;
}

std::vector<const Grammar *> all_commands () {
  std::vector<const Grammar *> all;
  for (const auto &[name, grammar] : commands ())
    all.push_back (&grammar);
  return all;
}

int word_number (std::string_view tag, std::string_view word) {
  const std::vector<std::string_view> &words = find_tag (tag)->words;
  const auto found = std::find (words.begin (), words.end (), word);
  return found == words.end () ? -1 : static_cast<int> (found - words.begin ());
}

std::string_view word_at (std::string_view tag, int number) {
  const std::vector<std::string_view> &words = find_tag (tag)->words;
  const auto place = static_cast<std::size_t> (number);
  return place < words.size () ? words[place] : std::string_view ();
}

} // namespace sim
