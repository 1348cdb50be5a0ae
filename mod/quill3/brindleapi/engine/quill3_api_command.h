#pragma once

#include "base/amutex.h"
#include "engine/commands.h"
#include "engine/quill3_api_parser2.h"

#include <memory>

namespace QUILL3 {

/// Turns commands into documents and writes each of them whole. Threads: any may send; the send lock keeps a
/// document together, so that documents appear on the wire one after the other in the order in which the lock
/// was taken.
class APICommand : public APIParser2 {
public:
  APICommand ();
  ~APICommand () override;

  /// Sets what is called with each outgoing document, on the sender's thread, before the send lock is taken
  /// for it; a sender may hold locks already. Belongs in front of the first command.
  void set_send_hook (AFunction<void (const XMLTree &)> hook) { send_hook_ = hook; }

protected:
  /// Takes the next bytes of a document; the only way by which bytes leave. Called with the send lock held.
  virtual void send_bytes (const void *data, uint64_t length) = 0;

  /// Sends a command. @param xid identifier for the document @param name wire name @param rows,arguments the
  /// struct of namespace command that holds the arguments @param is_over as for `send_document`
  void send_command (const AString &xid, const AString &name, const Rows &rows, const void *arguments,
                     AFunction<bool ()> is_over = {});

  /// The point through which every document leaves: calls the hook, then writes under the send lock.
  /// @param is_over asked when the lock is held; true: the command has ended meanwhile, with the link that it
  /// was meant for, and must not appear on another
  void send_document (const XMLTree &document, AFunction<bool ()> is_over = {});

  /// Renders a document and hands it to `send_bytes` in pieces of at most 1500 bytes, unless `is_over`. The
  /// send lock is held.
  virtual void write_document (const XMLTree &document, const AFunction<bool ()> &is_over);

private:
  AFunction<void (const XMLTree &)> send_hook_;
  std::unique_ptr<AMutex> send_lock_; ///< recursive: a callback that runs during a send may send
};

} // namespace QUILL3
