// Birth, connections and end of a connection object, and whether its commands wait.
#include "api/command_flow.h"

#include "platform/threads.h"
#include "schema/members.h"

#include <new>

namespace {

constexpr int thread_priority = -1;
constexpr uint32_t report_clip_change = member (QUILL3::Enumeration::ReportType, "clip_change");
constexpr uint32_t report_directory_change = member (QUILL3::Enumeration::ReportType, "directory_change");

constexpr unsigned sync_poll_milliseconds = 1;

std::array<std::unique_ptr<ChannelCache>, OrvaConnObject::channel_count> new_channels () {
  std::array<std::unique_ptr<ChannelCache>, OrvaConnObject::channel_count> channels;
  for (auto &channel : channels)
    channel = std::make_unique<ChannelCache> ();
  return channels;
}

} // namespace

OrvaConnObject::OrvaConnObject ()
    : channels_ (new_channels ()),
      metadata_callback_ (AMethod::bind (this, &OrvaConnObject::on_metadata_change)) {
  if (!clip_changes_lock_.is_valid () || !directory_changes_lock_.is_valid ())
    throw std::bad_alloc ();
}

OrvaConnObject::~OrvaConnObject () {
  stop_and_join ();
  kv_let_go_of_scans ();
}

void OrvaConnObject::start (uint32_t address) {
  set_server_address (address);
  start_thread (thread_priority);
}

void OrvaConnObject::on_connected () {
  if (stop_requested ())
    return;
  ++links_;
  if (clip_reports_registered_.load () != 0)
    report_register ({.ReportType = report_clip_change});
  if (directory_reports_registered_.load () != 0)
    report_register ({.ReportType = report_directory_change});
  register_channel_reports ();
  kv_restart ();
}

ResultCode OrvaConnObject::ensure_report (const ARef<OrvaConnObject> &self, atomic_unsigned &registered,
                                          uint32_t report_type) {
  if (registered.load () != 0)
    return result_ok ();
  const QUILL3::command::report_register command = {.ReportType = report_type};
  unsigned link = 0;
  const ResultCode code = forced_command (self, &API::report_register, command, &link);
  if (code == ORVA_OK)
    self->keep_registered (registered, link, [&] { self->report_register (command); });
  return code;
}

ResultCode OrvaConnObject::track_clip_reports (ARef<OrvaConnObject> self) {
  return ensure_report (self, self->clip_reports_registered_, report_clip_change);
}

ResultCode OrvaConnObject::track_directory_reports (ARef<OrvaConnObject> self) {
  return ensure_report (self, self->directory_reports_registered_, report_directory_change);
}

void OrvaConnObject::synchronous (ARef<OrvaConnObject> self, uint32_t flag) {
  self->asynchronous_ = flag;
}

void OrvaConnObject::sync (ARef<OrvaConnObject> self) {
  OrvaConnObject &connection = *self;
  while (connection.pending_commands_.load () != 0)
    platform::sleep_milliseconds (sync_poll_milliseconds);
}
