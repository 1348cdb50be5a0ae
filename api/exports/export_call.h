#pragma once

#include "api/connection/command_flow.h"
#include "api/connection/connection_registry.h"

// Helpers for all exported functions. No exception leaves them.

namespace command = QUILL3::command;
using QUILL3::API;

/// Calls @p body. Turns exceptions into code 2 with "Internal software error".
template <class Body>
ResultCode guarded (Body body) noexcept {
  try {
    return body ();
  } catch (...) {
    return result_internal_error ();
  }
}

/// The same for exports without a code: exceptions become @p otherwise.
template <class Value, class Body>
Value guarded_or (Value otherwise, Body body) noexcept {
  try {
    return body ();
  } catch (...) {
    return otherwise;
  }
}

/// The same for exports without a result: exceptions are ignored.
template <class Body>
void guarded_quietly (Body body) noexcept {
  try {
    body ();
  } catch (...) {
  }
}

/// Finds the connection, or returns "Invalid handle", and calls `operation (const Connection &)`. The
/// connection lives until that has returned. Turns exceptions into code 2.
template <class Operation>
ResultCode on_connection (uint32_t connection, Operation operation) noexcept {
  return guarded ([&] {
    const Connection self = connections ().find (connection);
    return self ? operation (self) : result_invalid_handle ();
  });
}

/// An export that is one command, answered by `ok`. Finds the connection, or returns "Invalid handle", sends
/// the command, and waits for the answer unless the connection is asynchronous. Turns exceptions into code 2.
/// @param arguments returns the command; it is called once the connection has been found
template <class Arguments>
ResultCode send_command (uint32_t connection, Arguments arguments) noexcept {
  try {
    const Connection self = connections ().find (connection);
    return self ? ordinary_command (self, arguments ()) : result_invalid_handle ();
  } catch (...) {
    return result_internal_error ();
  }
}
