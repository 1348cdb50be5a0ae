#include "commands.h"

#include "vocabulary.h"

namespace sim {

namespace {

void report_register (Call &call) {
  call.client.reports.insert (call.arguments.word ("ReportType"));
}

void report_unregister (Call &call) {
  call.client.reports.erase (call.arguments.word ("ReportType"));
}

void reports_register (Call &call) {
  call.client.reports.merge (call.arguments.words ("ReportSet"));
}

void reports_unregister (Call &call) {
  for (const int kind : call.arguments.words ("ReportSet"))
    call.client.reports.erase (kind);
}

// The answer goes first, so that the present values are reports of a registration that stands.
void register_channels (Call &call, const std::set<int> &channels, const std::set<int> &kinds) {
  call.answer (empty_body ("ok"));
  for (const int channel : channels)
    for (const int kind : kinds) {
      call.client.channel_reports.insert ({channel, kind});
      call.world.report_present (call.client, channel, kind);
    }
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
