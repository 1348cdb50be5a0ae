// Exports: key-value stores.
#include "api/basics/typehelp.h"
#include "api/exports/export_call.h"
#include "api/stores/open_stores.h"

using typehelp::fill_string_buffer;
using typehelp::units_argument;

namespace {

/// Finds the store, or returns "Invalid handle", and calls @p operation with it; the store lives until that
/// has returned. Turns exceptions into code 2.
template <class Operation>
ResultCode on_store (uint32_t handle, Operation operation) noexcept {
  return guarded ([&] {
    const ARef<KVStore> store = open_stores ().find (handle);
    return store ? operation (*store) : result_invalid_handle ();
  });
}

uint32_t enter (const ARef<KVStore> &store) {
  try {
    return open_stores ().open (store);
  } catch (...) {
    store->close ();
    throw;
  }
}

ResultCode open_store (const Connection &self, const orva_char *folder, const orva_char *prefix,
                       uint32_t mode, uint32_t *handle) {
  if (mode < ORVA_STORE_READ || mode > ORVA_STORE_WRITE)
    return result_invalid_argument ();
  const ResultCode ok = result_ok (); // may need memory: done before there is something to undo
  *handle = enter (ARef<KVStore>::create (self, units_argument (folder), units_argument (prefix), mode));
  return ok;
}

} // namespace

uint32_t orva_open_kvstore (uint32_t connection, const orva_char *folder, const orva_char *prefix,
                            uint32_t mode, uint32_t *handle) {
  return on_connection (
      connection, [&] (const Connection &self) { return open_store (self, folder, prefix, mode, handle); });
}

void orva_close_key_value_store (uint32_t handle) {
  guarded_quietly ([&] {
    if (const ARef<KVStore> store = open_stores ().take (handle))
      store->close ();
  });
}

uint32_t orva_kvstore_set (uint32_t handle, const orva_char *key, const orva_char *value) {
  return on_store (handle,
                   [&] (KVStore &store) { return store.set (units_argument (key), units_argument (value)); });
}

uint32_t orva_kvstore_erase (uint32_t handle, const orva_char *key) {
  return on_store (handle, [&] (KVStore &store) { return store.erase (units_argument (key)); });
}

uint32_t orva_kvstore_flush (uint32_t handle, uint32_t timeout) {
  return on_store (handle, [&] (KVStore &store) { return store.flush (timeout); });
}

uint32_t orva_kvstore_wait_scan (uint32_t handle, uint32_t timeout) {
  return on_store (handle, [&] (KVStore &store) { return store.wait_scan (timeout); });
}

uint32_t orva_kvstore_get_change (uint32_t handle, uint32_t timeout, uint32_t *type, OrvaStringBuffer key,
                                  OrvaStringBuffer value) {
  return on_store (handle, [&] (KVStore &store) {
    std::u16string changed_key;
    std::u16string new_value;
    const ResultCode code = store.get_change (timeout, type, &changed_key, &new_value);
    if (code != ORVA_OK)
      return code;
    fill_string_buffer (changed_key, key);
    fill_string_buffer (new_value, value);
    return code;
  });
}
