#pragma once

#include "api/basics/results.h"
#include "api/connection/conn_object.h"
#include "base/amethod.h"
#include "base/bsem.h"
#include "engine/callbacks.h"

#include <optional>
#include <tuple>
#include <utility>

/// Takes the outcome of a command from its callbacks to the thread that waits for it. It is counted: the
/// waiting thread holds one reference, and the command holds another until it has finished. Threads: one
/// thread creates it and waits. The callbacks run on the connection's thread or, when the link is down, on
/// the thread of any caller of this connection. What they write is read after the wait.
class Completion {
public:
  /// @param waits whether somebody waits for the outcome. Throws std::bad_alloc when the system cannot make a
  ///   semaphore; the connection has not counted the command then.
  Completion (Connection connection, bool waits);
  Completion (const Completion &) = delete;
  Completion &operator= (const Completion &) = delete;

  /// The command is about to be sent. @param self this object, which lives until `finish`
  void keep_until_finished (ARef<Completion> self) { self_ = std::move (self); }

  /// The command was answered by `ok`.
  void succeed ();
  /// The command failed: code 2 with the given text. The number is not kept.
  void fail (AString text, uint32_t number);
  /// The command has ended: wakes the waiter, lowers the connection's count of commands and drops the
  /// command's reference, in this order. The object may be gone on return.
  void finish ();

  /// Waits for the outcome, without a limit, and records it for the calling thread. Without a waiter it
  /// returns "OK" at once, and the outcome is never seen.
  // C2, C3: doc/compatibility.md
  ResultCode wait ();

  /// The number of the link, counted from 1, on which `ok` was received.
  uint32_t link () const { return link_; }

private:
  const Connection connection_;
  std::optional<bsem> finished_; ///< empty when nobody waits
  ResultCode code_ = ORVA_OK;
  AString text_;
  uint32_t link_ = 0;
  ARef<Completion> self_;
};

/// A command as its sender sees it. The sender makes one, passes the callbacks to `QUILL3::API::send`, and
/// then calls `outcome`. When `send` has thrown, it has run no callback and never will. Then the destructor
/// ends the command.
class PendingCommand {
public:
  PendingCommand (const Connection &connection, bool waits)
      : completion_ (ARef<Completion>::create (connection, waits)) {
    completion_->keep_until_finished (completion_);
  }
  PendingCommand (const PendingCommand &) = delete;
  PendingCommand &operator= (const PendingCommand &) = delete;
  ~PendingCommand () {
    if (!sent_)
      completion_->finish ();
  }

  QUILL3::callback::ok on_ok () const { return AMethod::bind (completion_.get (), &Completion::succeed); }
  QUILL3::callback::error on_error () const { return AMethod::bind (completion_.get (), &Completion::fail); }

  /// To be called when `send` has returned. Waits if that is wanted, and returns the outcome, recorded for
  /// this thread.
  ResultCode outcome () {
    sent_ = true;
    return completion_->wait ();
  }

  Completion &completion () const { return *completion_; }

private:
  const ARef<Completion> completion_;
  bool sent_ = false;
};

/// The callback of a reply that has values and ends its command. It stores the values and ends the command.
/// The variables belong to a thread that waits for the outcome.
template <class... Values>
class AnswerReceiver {
public:
  AnswerReceiver (Completion &completion, Values &...variables)
      : completion_ (completion), variables_ (variables...) {}

  void receive (Values... values) {
    variables_ = std::tuple<Values...> (std::move (values)...);
    completion_.finish ();
  }
  AFunction<void (Values...)> callback () { return AMethod::bind (this, &AnswerReceiver::receive); }

private:
  Completion &completion_;
  std::tuple<Values &...> variables_;
};
