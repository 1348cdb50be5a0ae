#pragma once

#include "api/completions.h"

#include <type_traits>

/// Sends a command on behalf of @p completion and waits for its outcome, if the completion has a waiter.
/// @param wrapper the command's member of QUILL3::API
/// @param command its arguments
/// @param first, rest one callback for each reply that the command can get, made from the completion; the
///   last is its error callback
/// @return the outcome, recorded for the calling thread. What the wrapper throws, when memory runs out, is
///   passed on with the completion finished: such a wrapper has run no callback and never will.
template <class Completion, class Command, class First, class... Rest>
ResultCode run_command (const ARef<OrvaConnObject> &self, const OrvaConnObject::CBRef<Completion> &completion,
                        AString (QUILL3::API::*wrapper) (const Command &, First, Rest...),
                        const std::type_identity_t<Command> &command, std::type_identity_t<First> first,
                        std::type_identity_t<Rest>... rest) {
  try {
    (self.get ()->*wrapper) (command, first, rest...);
  } catch (...) {
    completion->finish ();
    throw;
  }
  return completion->wait_result ();
}

/// A wrapper of QUILL3::API whose command is answered by `ok`.
template <class Command>
using OkWrapper = AString (QUILL3::API::*) (const Command &, QUILL3::callback::ok, QUILL3::callback::error);

/// The road of a command that is answered by `ok`: `ordinary_command (self, &API::stop, {.Channel = 0})`.
/// Waits unless the connection is asynchronous.
template <class Command>
ResultCode ordinary_command (const ARef<OrvaConnObject> &self, OkWrapper<Command> wrapper,
                             const std::type_identity_t<Command> &command) {
  const auto completion = OrvaConnObject::make_completion (self);
  return run_command (self, completion, wrapper, command, completion->ok_callback (),
                      completion->error_callback ());
}

/// The same for registrations: waits in any case.
/// @param link receives which of the connection's links has brought the `ok`; may be null
template <class Command>
ResultCode forced_command (const ARef<OrvaConnObject> &self, OkWrapper<Command> wrapper,
                           const std::type_identity_t<Command> &command, unsigned *link = nullptr) {
  const auto completion = OrvaConnObject::make_forced_completion (self);
  const ResultCode code = run_command (self, completion, wrapper, command, completion->ok_callback (),
                                       completion->error_callback ());
  if (link != nullptr)
    *link = completion->link;
  return code;
}

// Adding 0 takes part in the order of all changes of the count. So either the new link, which counts itself
// before it looks at the flags, sees this flag, or this sees the new link.
template <class RegisterReport>
void OrvaConnObject::keep_registered (atomic_unsigned &registered, unsigned link,
                                      RegisterReport register_report) {
  registered.store (1);
  if ((links_ += 0) == link)
    return;
  try {
    register_report ();
  } catch (...) {
    registered.store (0);
    throw;
  }
}
