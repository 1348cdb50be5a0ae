// Exports: connections, last error, waiting or not.
#include "api/export_call.h"
#include "api/typehelp.h"
#include "orva.h"
#include "platform/threads.h"

namespace {

constexpr unsigned poll_milliseconds = 1;

/// For exports without a code, which leave the last error alone: an unknown number is ignored.
template <class... Parameters>
void quietly_on_connection (uint32_t connection, void (*operation) (ARef<OrvaConnObject>, Parameters...),
                            Parameters... arguments) noexcept {
  guarded_quietly ([&] {
    const ARef<OrvaConnObject> found = ConnectionRegistry::instance ().lookup (connection);
    if (!found.is_null ())
      operation (found, arguments...);
  });
}

uint32_t open_connection (uint32_t address) {
  const auto object = ARef<OrvaConnObject>::create ();
  object->start (address);
  return ConnectionRegistry::instance ().insert (object);
}

} // namespace

uint32_t orva_connect (uint32_t address) {
  return guarded_or (uint32_t{0}, [&] { return open_connection (address); });
}

void orva_close (uint32_t connection) {
  guarded_quietly ([&] { ConnectionRegistry::instance ().remove (connection); });
}

uint8_t orva_connected (uint32_t connection) {
  return guarded_or (uint8_t{0}, [&] {
    const ARef<OrvaConnObject> found = ConnectionRegistry::instance ().lookup (connection);
    return uint8_t{!found.is_null () && found->is_connected ()};
  });
}

uint8_t orva_wait_until_connected (uint32_t connection) {
  while (orva_connected (connection) == 0)
    platform::sleep_milliseconds (poll_milliseconds);
  return 1;
}

void orva_get_last_error (OrvaStringBuffer text) {
  typehelp::fill_string_buffer (guarded_or (AString (), last_error_text), text);
}

void orva_synchronous (uint32_t connection, uint32_t flag) {
  quietly_on_connection (connection, OrvaConnObject::synchronous, flag);
}

void orva_sync (uint32_t connection) {
  quietly_on_connection (connection, OrvaConnObject::sync);
}
