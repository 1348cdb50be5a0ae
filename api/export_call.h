#pragma once

#include "api/connection_registry.h"
#include "api/results.h"

#include <type_traits>

/// The wall at every export that returns a code: whatever is thrown below becomes code 2.
template <class Body>
ResultCode guarded (Body body) noexcept {
  try {
    return body ();
  } catch (...) {
    return result_internal_error ();
  }
}

/// The same for exports without a code: whatever is thrown below becomes @p otherwise.
template <class Value, class Body>
Value guarded_or (Value otherwise, Body body) noexcept {
  try {
    return body ();
  } catch (...) {
    return otherwise;
  }
}

/// The same for exports without a result: what was thrown is forgotten.
template <class Body>
void guarded_quietly (Body body) noexcept {
  try {
    body ();
  } catch (...) {
  }
}

/// The road of an export that works on a connection: finds it, or gives "Invalid handle", and calls the
/// operation with a reference that keeps it alive for the length of the call.
template <class... Parameters>
ResultCode on_connection (uint32_t connection, ResultCode (*operation) (ARef<OrvaConnObject>, Parameters...),
                          std::type_identity_t<Parameters>... arguments) noexcept {
  return guarded ([&] {
    ARef<OrvaConnObject> found;
    const ResultCode code = ConnectionRegistry::instance ().find (connection, found);
    return code != ORVA_OK ? code : operation (found, arguments...);
  });
}
