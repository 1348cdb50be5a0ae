#pragma once

#include "engine/callbacks.h"
#include "engine/quill3_api_command.h"

#include <memory>

namespace QUILL3 {

class XIDRegistry;
class XIDRegistryEntry;

/// Keeps the open commands, gives them identifiers, and calls for each reply the callback that the sender
/// supplied for that kind of reply. No command times out. It ends with a reply that closes it, with
/// `cancel_command`, when all commands fail, or when it is sent while this object is ending. When this object
/// is destroyed, open commands are dropped without a callback. Threads: any.
class API : public APICommand {
public:
  API ();
  ~API () override;

  // One wrapper for each command, with the name of the command, in two forms. One more, `send`, takes any
  // command:
  //
  //   AString play (const command::play &arguments);
  //   AString play (const command::play &arguments, callback::ok ok, callback::error error);
  //   void send (const command::play &arguments, callback::ok ok, callback::error error, AString *xid);
  //
  // The first is the second with empty callbacks. `send` is the second, but it stores the identifier, or
  // makes none where `xid` is null. There is a callback for each answer of the command, in the order of
  // commands.inc, and `error` is the last. Any of them may be empty. The result is the identifier that was
  // sent with the command. When all callbacks are empty it begins with `none`, and the command is never open.
  //
  // With a callback that is not empty, the command is open before its first byte is sent. It ends once.
  // Callbacks run on the connection's thread. When the link is down they run on the thread that finds this
  // out, which may be this one before the wrapper returns. When another thread has begun to fail the command,
  // its callback may run after the wrapper returns. A wrapper that throws because memory ran out leaves no
  // command open and runs no callback.
#define CALLBACK(reply) callback::reply reply
#define COMMAND(name, answers, ...)                                                                          \
  AString name (const command::name &arguments);                                                             \
  AString name (const command::name &arguments, LIST_OF (CALLBACK, NAMES answers), callback::error error);   \
  void send (const command::name &arguments, LIST_OF (CALLBACK, NAMES answers), callback::error error,       \
             AString *xid = nullptr);
#include "engine/commands.inc"
#undef CALLBACK

  /// Number of open commands.
  uint32_t outstanding_count ();

  /// Ends an open command without a callback. A callback that is running on another thread continues.
  /// @return false when no such command is open.
  bool cancel_command (const AString &xid);

  /// Fails all open commands with "Failing all outstanding commands" and the code 0, in text order of their
  /// identifiers. Commands that the callbacks open fail too. A callback that calls this returns at once,
  /// because the running call fails what is left. Commands that other threads open meanwhile stay open, and a
  /// command that another call has begun to fail is left to that call. No lock is held while a callback runs.
  /// When a callback of a command is running that leaves it open, the command fails after that callback. When
  /// it is the command's last callback, the command does not fail.
  void fail_all_commands () noexcept;

protected:
  /// Whether this object is ending. A command that is sent then fails. Commands that were open before are
  /// dropped without a callback.
  virtual bool is_ending () const {
    return false;
  }

#define REPLY(name, entry, ...)                                                                              \
  void on_##name (AString xid __VA_OPT__ (, LIST_OF (PARAMETER, __VA_ARGS__))) override;
#include "engine/bodies.inc"

private:
  using Shared = std::shared_ptr<XIDRegistryEntry>;

  void open_command (const Shared &entry, const AString &name, const Rows &rows, const void *arguments,
                     AString *xid);

  std::unique_ptr<XIDRegistry> registry_;
};

} // namespace QUILL3
