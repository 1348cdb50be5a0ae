#pragma once

#include "api/connection/completion.h"

/// Sends a command that is answered by `ok`, and waits for the answer unless the connection is asynchronous:
/// `ordinary_command (self, command::stop{.Channel = 0})`.
/// @return the outcome, recorded for the calling thread
template <class Command>
ResultCode ordinary_command (const Connection &self, const Command &command) {
  PendingCommand pending (self, !self->is_asynchronous ());
  self->send (command, pending.on_ok (), pending.on_error ());
  return pending.outcome ();
}

/// Asks for values and waits for them, on an asynchronous connection too.
/// @param variables receive the values if the result is ORVA_OK
template <class Command, class... Values>
ResultCode ask (const Connection &self, const Command &command, Values &...variables) {
  PendingCommand pending (self, true);
  AnswerReceiver<Values...> receiver (pending.completion (), variables...);
  self->send (command, receiver.callback (), pending.on_error ());
  return pending.outcome ();
}

/// Marks a report as registered. `on_connected` counts the new link before it reads the marks. So either it
/// sees this mark, or the count has changed when it is compared here. Then the report is registered again on
/// the new link.
/// @param link the one on which the server has accepted the registration
template <class Command>
void keep_registered (const Connection &self, std::atomic<bool> &registered, uint32_t link,
                      const Command &command) {
  registered = true;
  if (self->links () == link)
    return;
  try {
    self->send (command, {}, {});
  } catch (...) {
    registered = false;
    throw;
  }
}

/// Registers a kind of report unless it is registered. It is registered again on each new link, as long as
/// the connection exists. Waits for the answer, on an asynchronous connection too. Two threads that call this
/// at the same time both send the registration.
/// @param registered the mark of this kind of report
/// @param accepted is called when the server has accepted, and returns the result; the report counts as
///   registered if that is ORVA_OK
// C31: doc/compatibility.md
template <class Command, class Accepted>
ResultCode ensure_registered (const Connection &self, std::atomic<bool> &registered, const Command &command,
                              Accepted accepted) {
  if (registered)
    return result_ok ();
  PendingCommand pending (self, true);
  self->send (command, pending.on_ok (), pending.on_error ());
  ResultCode code = pending.outcome ();
  if (code == ORVA_OK)
    code = accepted ();
  if (code == ORVA_OK)
    keep_registered (self, registered, pending.completion ().link (), command);
  return code;
}
