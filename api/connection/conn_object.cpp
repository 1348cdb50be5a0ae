// Begin, new links and end of a connection.
#include "api/connection/conn_object.h"

#include "platform/threads.h"

namespace {

constexpr int thread_priority = -1;
constexpr unsigned poll_milliseconds = 1;

} // namespace

OrvaConnObject::~OrvaConnObject () {
  stop_and_join ();
}

void OrvaConnObject::start (uint32_t address) {
  set_server_address (address);
  start_thread (thread_priority);
}

void OrvaConnObject::wait_for_pending_commands () const {
  while (pending_commands_ != 0)
    platform::sleep_milliseconds (poll_milliseconds);
}

// C30: doc/compatibility.md
void OrvaConnObject::on_connected () {
  if (stop_requested ())
    return;
  ++links_;
  for (const TrackedNames *names : {&clips, &directories})
    if (names->registered)
      report_register ({.ReportType = names->report_type});
  channels.each_registered ([this] (uint32_t channel, uint32_t report_type) {
    channel_report_register ({.Channel = channel, .ChannelReportType = report_type});
  });
  folders.watch_again ();
}
