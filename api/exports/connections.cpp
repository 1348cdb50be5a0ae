// Exports: connections, last error, waiting or not.
#include "api/basics/typehelp.h"
#include "api/exports/export_call.h"
#include "platform/threads.h"

namespace {

constexpr unsigned poll_milliseconds = 1;

uint32_t open_connection (uint32_t address) {
  const auto self = Connection::create ();
  self->start (address);
  return connections ().open (self);
}

} // namespace

uint32_t orva_connect (uint32_t address) {
  return guarded_or (uint32_t{0}, [&] { return open_connection (address); });
}

void orva_close (uint32_t connection) {
  guarded_quietly ([&] { connections ().close_and_hold (connection); });
}

uint8_t orva_connected (uint32_t connection) {
  return guarded_or (uint8_t{0}, [&] {
    const Connection self = connections ().find (connection);
    return uint8_t{self && self->is_connected ()};
  });
}

// C4: doc/compatibility.md
uint8_t orva_wait_until_connected (uint32_t connection) {
  while (orva_connected (connection) == 0)
    platform::sleep_milliseconds (poll_milliseconds);
  return 1;
}

void orva_get_last_error (OrvaStringBuffer text) {
  typehelp::fill_string_buffer (guarded_or (AString (), last_error_text), text);
}

// Both leave the last error alone; an unknown number is ignored.

// C1: doc/compatibility.md
void orva_synchronous (uint32_t connection, uint32_t flag) {
  guarded_quietly ([&] {
    if (const Connection self = connections ().find (connection))
      self->set_asynchronous (flag);
  });
}

void orva_sync (uint32_t connection) {
  guarded_quietly ([&] {
    if (const Connection self = connections ().find (connection))
      self->wait_for_pending_commands ();
  });
}
