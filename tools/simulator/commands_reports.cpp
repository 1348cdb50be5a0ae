#include "commands.h"

#include "vocabulary.h"

namespace sim {

namespace {

// Kinds that have a present value. The others are reported only when something happens.
std::string present_value (const World &world, std::string_view kind) {
  if (const auto set = world.present_reports.find (std::string (kind)); set != world.present_reports.end ())
    return set->second;
  if (kind == "disk_space")
    return world.disk_space_body ();
  if (kind == "temperature")
    return Writer ().open ("temperature").number ("Temperature10", 415).close ("temperature").take ();
  Writer out;
  if (kind == "chase_ltc_timecode" && world.chase_field >= 0) {
    out.open ("chase_ltc_timecode");
    write_timecode (out, "Timecode", world, world.chase_field, world.standard.drop_frame);
    out.close ("chase_ltc_timecode");
  }
  if (kind == "ltc_input") // no timecode is connected
    out.open ("ltc_timecode")
        .open ("Timecode")
        .boolean ("Valid", false)
        .close ("Timecode")
        .close ("ltc_timecode");
  return out.take ();
}

// The answer is sent first, so that the present values follow an accepted registration.
void register_kinds (Call &call, const std::set<int> &kinds) {
  call.answer (empty_body ("ok"));
  for (const int kind : kinds) {
    call.client.reports.insert (kind);
    if (const std::string body = present_value (call.world, word_at ("ReportType", kind)); !body.empty ())
      call.world.send_report (call.client, body);
  }
}

void report_register (Call &call) {
  register_kinds (call, {call.arguments.word ("ReportType")});
}

void report_unregister (Call &call) {
  call.client.reports.erase (call.arguments.word ("ReportType"));
}

void reports_register (Call &call) {
  register_kinds (call, call.arguments.words ("ReportSet"));
}

void reports_unregister (Call &call) {
  for (const int kind : call.arguments.words ("ReportSet"))
    call.client.reports.erase (kind);
}

void register_channels (Call &call, const std::set<int> &channels, const std::set<int> &kinds) {
  call.answer (empty_body ("ok"));
  for (const int channel : channels)
    for (const int kind : kinds)
      call.world.start_reports (call.client, channel, kind);
}

void unregister_channels (Call &call, const std::set<int> &channels, const std::set<int> &kinds) {
  for (const int channel : channels)
    for (const int kind : kinds)
      call.client.channel_reports.erase ({channel, kind});
}

void channel_report_register (Call &call) {
  register_channels (call, {channel_of (call.arguments)}, {call.arguments.word ("ChannelReportType")});
}

void channel_report_unregister (Call &call) {
  unregister_channels (call, {channel_of (call.arguments)}, {call.arguments.word ("ChannelReportType")});
}

void channel_reports_register (Call &call) {
  register_channels (call, channels_of (call.arguments), call.arguments.words ("ChannelReportSet"));
}

void channel_reports_unregister (Call &call) {
  unregister_channels (call, channels_of (call.arguments), call.arguments.words ("ChannelReportSet"));
}

} // namespace

void add_report_commands (Handlers &handlers) {
  handlers["report_register"] = report_register;
  handlers["report_unregister"] = report_unregister;
  handlers["reports_register"] = reports_register;
  handlers["reports_unregister"] = reports_unregister;
  handlers["channel_report_register"] = channel_report_register;
  handlers["channel_report_unregister"] = channel_report_unregister;
  handlers["channel_reports_register"] = channel_reports_register;
  handlers["channel_reports_unregister"] = channel_reports_unregister;
}

} // namespace sim
