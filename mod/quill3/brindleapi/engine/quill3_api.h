#pragma once

#include "engine/callbacks.h"
#include "engine/quill3_api_command.h"

#include <memory>

namespace QUILL3 {

class XIDRegistry;
class XIDRegistryEntry;

/// Keeps the commands that are open, hands out their identifiers, and turns each incoming reply into a call
/// of the callback that the sender supplied for that kind of reply. Nothing expires by itself: a command ends
/// with a reply that closes it, with `cancel_command`, with a failure (of all, or its own when it is sent
/// behind the end), or without a word when this object is destroyed. Threads: any.
class API : public APICommand {
public:
  API ();
  ~API () override;

  // One wrapper for each command, named as the command, in two forms, and one named `send` for all commands:
  //
  //   AString play (const command::play &arguments);
  //   AString play (const command::play &arguments, callback::ok ok, callback::error error);
  //   AString send (const command::play &arguments, callback::ok ok, callback::error error);
  //
  // The first is the second with empty callbacks, and the third is the second. The callbacks are those of the
  // replies that the command can get, in the order of commands.inc, `error` last; any of them may be empty.
  // The result is the identifier that went out with the command; it begins with `none` when all callbacks are
  // empty, and nothing is kept of such a command here.
  //
  // With a callback that is not empty the command is open from before its first byte is sent, and ends once:
  // callbacks may run on the connection's thread or, when the link is down, on any that finds it so, this one
  // included, and so before the wrapper returns. A failure that another thread has begun to tell may also
  // come after it. A wrapper that throws, for want of memory, leaves no command open and runs no callback.
#define CALLBACK(reply) callback::reply reply
#define PASS(reply) reply
#define COMMAND(name, answers, ...)                                                                          \
  AString name (const command::name &arguments);                                                             \
  AString name (const command::name &arguments, LIST_OF (CALLBACK, NAMES answers), callback::error error);   \
  AString send (const command::name &arguments, LIST_OF (CALLBACK, NAMES answers), callback::error error) {  \
    return name (arguments, LIST_OF (PASS, NAMES answers), error);                                           \
  }
#include "engine/commands.inc"
#undef CALLBACK
#undef PASS

  /// Number of open commands.
  uint32_t outstanding_count ();

  /// Ends an open command without a callback; one that is running on another thread goes on.
  /// @return false when no such command is open.
  bool cancel_command (const AString &xid);

  /// Fails all open commands with "Failing all outstanding commands" and the code 0, each once, in text order
  /// of the identifiers, and with them those that the callbacks open; called by such a callback, it leaves
  /// them to the call that is running and returns at once. What other threads open meanwhile is not touched,
  /// and what another call has begun to fail is left to that one. No lock of the registry is held while a
  /// callback runs. A command that a running callback leaves open fails
  /// when that callback has returned; one whose last callback is running does not fail.
  void fail_all_commands () noexcept;

protected:
  /// Whether commands are of no use any more, because the end of this object has begun: one that is sent then
  /// fails, and those that were open before are left without a word.
  virtual bool is_ending () const {
    return false;
  }

#define REPLY(name, entry, ...)                                                                              \
  void on_##name (AString xid __VA_OPT__ (, LIST_OF (PARAMETER, __VA_ARGS__))) override;
#include "engine/bodies.inc"

private:
  using Shared = std::shared_ptr<XIDRegistryEntry>;

  AString open_command (const Shared &entry, const AString &name, const Rows &rows, const void *arguments);

  std::unique_ptr<XIDRegistry> registry_;
};

} // namespace QUILL3
