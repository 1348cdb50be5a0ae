#include "commands.h"

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
  out.open ("disk_usage")
      .number ("TotalDiskSpace", 20'000'000'000'000)
      .number ("AvailableDiskSpace", 20'000'000'000'000);
  call.answer (out.number ("FieldSize", 262144).close ("disk_usage").take ());
}

void sync (Call &) {}

} // namespace

void add_server_commands (Handlers &handlers) {
  handlers["get_computer_name"] = get_computer_name;
  handlers["get_video_standard"] = get_video_standard;
  handlers["get_disk_usage"] = get_disk_usage;
  handlers["sync"] = sync;
}

} // namespace sim
