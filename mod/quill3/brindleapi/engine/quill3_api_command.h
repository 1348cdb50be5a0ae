#pragma once

#include "base/amutex.h"
#include "engine/commands.h"
#include "engine/quill3_api_parser2.h"

#include <memory>

namespace QUILL3 {

/// Writes commands, each as one whole document. Threads: any may send. The send lock keeps the bytes of a
/// document together. Documents appear on the wire in the order in which the lock was taken.
class APICommand : public APIParser2 {
public:
  APICommand ();
  ~APICommand () override;

  /// Sets a hook that is called with each outgoing document. It runs on the sender's thread, before the send
  /// lock is taken for the document; the sender may hold other locks. Call this before the first command.
  void set_send_hook (AFunction<void (const XMLTree &)> hook) { send_hook_ = hook; }

protected:
  /// Takes the next bytes of a document.
  using Output = AFunction<void (const void *data, uint64_t length)>;

  /// Sends a document. All commands leave through here.
  /// @param is_over called when the lock is held. When it returns true, the command has already failed with
  /// its own link. It must not appear on another link, so nothing is written.
  void send_document (const CommandDocument &document, AFunction<bool ()> is_over);

  /// Writes a document with `render`, unless `is_over`. Called with the send lock held.
  virtual void write_document (const CommandDocument &document, const AFunction<bool ()> &is_over)
      KELVANE_REQUIRES (*send_lock_) = 0;

  /// Passes the text of a document to @p output, in pieces of at most 1500 bytes.
  static void render (const CommandDocument &document, const Output &output);

private:
  AFunction<void (const XMLTree &)> send_hook_;
  std::unique_ptr<AMutex> send_lock_; ///< recursive, because a callback that runs during a send may send
};

} // namespace QUILL3
