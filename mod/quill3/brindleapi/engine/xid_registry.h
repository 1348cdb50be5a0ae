#pragma once

#include "base/amutex.h"
#include "base/astring.h"
#include "engine/callbacks.h"

#include <atomic>
#include <map>
#include <memory>
#include <type_traits>
#include <utility>

namespace QUILL3 {

/// What a reply does to the command that it answers.
enum class Entry {
  Ends, ///< the command is over when the callback has returned
  Stays ///< more replies may come
};

/// One open command: its callbacks and who may still run them. It is shared between the table and whoever is
/// ending it, and ended by exactly one of them. Threads: the callbacks are set before the entry enters the
/// table and never change after that; everything else is atomic.
class XIDRegistryEntry {
public:
  // One slot for each kind of reply, named as the reply; empty where nobody waits for it.
#define REPLY(name, ...) callback::name name{};
#include "engine/bodies.inc"

  /// Whether any slot is set.
  bool is_awaited () const;

  /// Whether somebody has taken the right to end this command.
  bool has_ended () const {
    return (state_ & ended) != 0;
  }

  /// Takes the right to end this command. @return true to exactly one caller.
  bool claim ();

  /// How the right to fail a command was taken.
  enum class Failure {
    refused, ///< the command is being ended by somebody else, or has ended
    now,     ///< the caller tells the failure
    later    ///< a callback is running; its thread tells the failure when it has returned
  };
  /// `claim` for a failure, which must not overtake a callback that is running.
  Failure claim_failure ();

  /// Before a callback that leaves the command open. @return false when the command has ended.
  bool begin_item ();
  /// After such a callback. @return true when the caller has to tell a failure that came meanwhile.
  bool end_item ();

private:
  friend class XIDRegistry;

  // The number of callbacks in progress that leave the command open, and these two marks.
  static constexpr uint32_t ended = 0x80000000;
  static constexpr uint32_t failed_meanwhile = 0x40000000;
  static constexpr uint32_t running = 0x3FFFFFFF;

  AString xid_;
  std::atomic<uint32_t> state_{0};
};

/// The open commands of one connection, by identifier. Any thread. No lock is held while a callback runs.
class XIDRegistry {
public:
  using Shared = std::shared_ptr<XIDRegistryEntry>;

  XIDRegistry ();
  XIDRegistry (const XIDRegistry &) = delete;
  XIDRegistry &operator= (const XIDRegistry &) = delete;
  /// Lets go of all commands without a word.
  ~XIDRegistry () = default;

  /// Opens a command whose slots are set, under the next free identifier of the process.
  /// @return the identifier for the document. When no slot is set nobody can be waiting: the command is not
  /// entered, and its identifier has `none` in front, which no entry ever has.
  AString issue_id (const Shared &entry);

  /// @return the open command of that identifier, or null.
  Shared find_entry (const AString &xid);
  /// Number of open commands. One counts until its last callback has returned, unless a failure meets that
  /// callback: then it leaves at once.
  uint32_t outstanding_count ();

  /// Hands a reply to the slot of the command that it answers. Nothing happens when that command is not open
  /// or did not ask for this kind, except that a reply which ends commands ends it.
  // C103: doc/compatibility.md
  template <class... Values>
  void fire (const AString &xid, Entry effect, AFunction<void (Values...)> XIDRegistryEntry::*slot,
             std::type_identity_t<Values>... values) {
    Shared entry = find_entry (xid);
    if (entry == nullptr || !(effect == Entry::Ends ? entry->claim () : entry->begin_item ()))
      return;
    Finish finish{*this, entry, effect};
    (entry.get ()->*slot).run (std::move (values)...);
  }

  /// Ends a command without a callback; one that is running goes on. @return false when it was not open.
  bool cancel (const AString &xid);
  /// Takes a command back. @return true: nobody has been told or will be. false: it is being ended elsewhere,
  /// or the thread that runs a callback of it tells the failure behind that.
  bool withdraw (const Shared &entry) noexcept;
  /// Fails one command as `fail_all` does, unless somebody else ends it.
  void fail (const Shared &entry) noexcept;
  /// Fails all open commands in text order of their identifiers, and those that their callbacks open on this
  /// thread; called by such a callback, leaves them to the run that it belongs to. What other threads open
  /// meanwhile stays open: so a run ends however busy they are. What another thread's run has taken is left
  /// to that one.
  void fail_all () noexcept;

private:
  using Table = std::map<AString, Shared>;
  /// One `fail_all` in progress, on the stack of its thread, and what it still has to fail.
  struct Run {
    const uint32_t thread;
    Table taken{};
    Run *next = nullptr;
  };
  struct Place {
    Table *table;
    Table::iterator at;
  };

  // Behind a reply's callback, whatever way it was left.
  struct Finish {
    XIDRegistry &registry;
    const Shared &entry;
    Entry effect;
    ~Finish () {
      if (effect == Entry::Ends)
        registry.remove_entry (entry);
      else
        registry.end_item (entry);
    }
  };

  AString free_number ();
  void enter (const Shared &entry);
  void remove_entry (const Shared &entry) noexcept;
  void end_item (const Shared &entry) noexcept;
  Place place_of (const AString &xid) noexcept KELVANE_REQUIRES (lock_);
  Run *run_of_this_thread () noexcept KELVANE_REQUIRES (lock_);
  // Takes all that is open into the run. False when this thread is in a run already, which goes on with it.
  bool begin (Run &run) noexcept;
  // The next to fail. Null when none is left: the run is over then, under the same hold of the lock, so that
  // nothing is entered into it behind that.
  Shared next_of (Run &run) noexcept;
  static void tell (const Shared &entry) noexcept;

  AMutex lock_;                                    ///< recursive
  Table entries_ KELVANE_GUARDED_BY (lock_);       ///< open, but for those that a run has taken
  Run *runs_ KELVANE_GUARDED_BY (lock_) = nullptr; ///< one for each thread that is failing commands
};

} // namespace QUILL3
