#include "commands.h"

#include <fmt/format.h>

namespace sim {

namespace {

void get_computer_name (Call &call) {
  call.answer (Writer ()
                   .open ("computername")
                   .text ("ComputerName", call.world.options.name)
                   .close ("computername")
                   .take ());
}

void get_video_standard (Call &call) {
  const Standard &standard = call.world.standard;
  Writer out;
  out.open ("video_standard").text ("VideoStandard", standard.name).text ("VideoRate", standard.rate);
  call.answer (out.text ("VideoResolution", standard.resolution).close ("video_standard").take ());
}

void get_disk_usage (Call &call) {
  Writer out;
  out.open ("disk_usage").number ("TotalDiskSpace", call.world.total_space ());
  out.number ("AvailableDiskSpace", call.world.available_space ());
  call.answer (out.number ("FieldSize", field_size).close ("disk_usage").take ());
}

void get_reference_source (Call &call) {
  const std::string &source = call.world.configuration.find ("ReferenceSource").effective;
  call.answer (Writer ()
                   .open ("reference_source")
                   .text ("ReferenceSource", source)
                   .close ("reference_source")
                   .take ());
}

void get_configuration (Call &call) {
  for (const ConfigurationItem &item : call.world.configuration.items ()) {
    Writer out;
    out.open ("configuration_item");
    write_configuration_item (out, item);
    call.row (out.close ("configuration_item").take ());
  }
}

void get_one_configuration (Call &call) {
  Writer out;
  out.open ("one_configuration_item");
  write_configuration_item (out,
                            call.world.configuration.find (call.arguments.text ("ConfigurationItemName")));
  call.answer (out.close ("one_configuration_item").take ());
}

void set_configuration (Call &call) {
  const ConfigurationItem &item = call.world.configuration.set (
      call.arguments.text ("ConfigurationItemName"), call.arguments.text ("ConfigurationItemValue"));
  Writer out;
  out.open ("config_changed").open ("ConfigurationChange");
  write_configuration_item (out, item);
  call.world.report ("config_change", out.close ("ConfigurationChange").close ("config_changed").take ());
}

void get_version_info (Call &call) {
  call.answer (Writer ()
                   .open ("version_info")
                   .text ("SVNVersion", "1")
                   .text ("SVNPath", "orva-simulator")
                   .close ("version_info")
                   .take ());
}

void get_compression_info (Call &call) {
  Writer out;
  out.open ("compression_info").open ("CompressionInfo").number ("CompressionYSize", field_size / 2);
  out.number ("CompressionCSize", field_size / 4).number ("CompressionKSize", field_size / 4);
  out.number ("AudioTrackCount", 2).text ("CompressionVSymbol", "avci").text ("CompressionKSymbol", "avci");
  out.text ("CompressionASymbol", "pcm").boolean ("CompressionVFrameBased", true);
  out.boolean ("CompressionKFrameBased", true).boolean ("CompressionAFrameBased", false);
  call.answer (out.close ("CompressionInfo").close ("compression_info").take ());
}

// These commands have no effect except their line in the log. There are no melts to download.
void nothing_more (Call &) {}

void export_start (Call &call) {
  call.client.exporting = true;
}

void check_exporting (const Call &call) {
  if (!call.client.exporting)
    throw Refusal ("No export has been started");
}

void export_add (Call &call) {
  check_exporting (call);
  const Clip clip = call.world.clips.find (call.arguments.text ("ClipID"));
  const std::uint32_t angle = call.arguments.maybe_number ("Angle").value_or (0);
  const std::uint64_t first = call.arguments.maybe_number ("ClipPosition").value_or (0);
  const std::uint64_t length = call.arguments.maybe_number ("ClipLength").value_or (0);
  if (call.arguments.text ("Filename").empty ())
    throw Refusal ("An export needs a file name");
  if (angle >= clip.angles)
    throw Refusal (fmt::format ("'{}' has no angle {}", clip.id, angle));
  if (first + length > clip.length ())
    throw Refusal (fmt::format ("Fields {} to {} are not in clip '{}', which has {}", first, first + length,
                                clip.id, clip.length ()));
}

void export_end (Call &call) {
  check_exporting (call);
  call.client.exporting = false;
}

void export_initiate (Call &call) {
  const int channel = channel_of (call.arguments);
  call.world.report (
      "export",
      Writer ().open ("export_requested").word ("Channel", channel).close ("export_requested").take ());
}

} // namespace

void add_server_commands (Handlers &handlers) {
  handlers["get_computer_name"] = get_computer_name;
  handlers["get_video_standard"] = get_video_standard;
  handlers["get_disk_usage"] = get_disk_usage;
  handlers["get_reference_source"] = get_reference_source;
  handlers["get_configuration"] = get_configuration;
  handlers["get_one_configuration"] = get_one_configuration;
  handlers["set_configuration"] = set_configuration;
  handlers["get_version_info"] = get_version_info;
  handlers["get_compression_info"] = get_compression_info;
  handlers["download_melts"] = nothing_more;
  handlers["debug_label"] = nothing_more;
  handlers["log"] = nothing_more;
  handlers["sync"] = nothing_more;
  handlers["export_start"] = export_start;
  handlers["export_add"] = export_add;
  handlers["export_end"] = export_end;
  handlers["export_initiate"] = export_initiate;
}

} // namespace sim
