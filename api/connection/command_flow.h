#pragma once

#include "api/connection/completion.h"

#include <type_traits>

/// A wrapper of QUILL3::API whose command is answered by `ok`.
template <class Command>
using OkWrapper = AString (QUILL3::API::*) (const Command &, QUILL3::callback::ok, QUILL3::callback::error);

/// A wrapper of QUILL3::API whose command is answered by values.
template <class Command, class... Values>
using ValuesWrapper = AString (QUILL3::API::*) (const Command &, AFunction<void (Values...)>,
                                                QUILL3::callback::error);

/// Sends a command that is answered by `ok`, and waits for the answer unless the connection is asynchronous:
/// `ordinary_command (self, &API::stop, {.Channel = 0})`.
/// @return the outcome, recorded for the calling thread
template <class Command>
ResultCode ordinary_command (const Connection &self, OkWrapper<Command> wrapper,
                             const std::type_identity_t<Command> &command) {
  PendingCommand pending (self, !self->is_asynchronous ());
  (self.get ()->*wrapper) (command, pending.on_ok (), pending.on_error ());
  return pending.outcome ();
}

/// Asks for values, and waits for them in any case.
/// @param variables receive the values if the result is ORVA_OK
template <class Command, class... Values>
ResultCode ask (const Connection &self, ValuesWrapper<Command, Values...> wrapper,
                const std::type_identity_t<Command> &command, std::type_identity_t<Values> &...variables) {
  PendingCommand pending (self, true);
  AnswerReceiver<Values...> receiver (pending.completion (), variables...);
  (self.get ()->*wrapper) (command, receiver.callback (), pending.on_error ());
  return pending.outcome ();
}

/// Marks a report as registered. A new link counts itself before it looks at the marks. So either it sees
/// this mark, or the count has changed here; then the report is asked for again on the new link.
/// @param link the one on which the server has accepted the registration
template <class Command>
void keep_registered (const Connection &self, std::atomic<bool> &registered, uint32_t link,
                      OkWrapper<Command> wrapper, const Command &command) {
  registered = true;
  if (self->links () == link)
    return;
  try {
    (self.get ()->*wrapper) (command, {}, {});
  } catch (...) {
    registered = false;
    throw;
  }
}

/// Has the server send a kind of report, unless that has been done; each new link then asks for it again, for
/// the life of the connection. Waits for the answer in any case. Nothing keeps two threads from asking at the
/// same time: the server is asked twice then.
/// @param registered the mark of this kind of report
/// @param accepted is called when the server has accepted, and returns the result; the report counts as
///   registered if that is ORVA_OK
// C31: doc/compatibility.md
template <class Command, class Accepted>
ResultCode ensure_registered (const Connection &self, std::atomic<bool> &registered,
                              OkWrapper<Command> wrapper, const std::type_identity_t<Command> &command,
                              Accepted accepted) {
  if (registered)
    return result_ok ();
  PendingCommand pending (self, true);
  (self.get ()->*wrapper) (command, pending.on_ok (), pending.on_error ());
  ResultCode code = pending.outcome ();
  if (code == ORVA_OK)
    code = accepted ();
  if (code == ORVA_OK)
    keep_registered (self, registered, pending.completion ().link (), wrapper, command);
  return code;
}
