#pragma once

#include "base/amutex.h"
#include "base/astring.h"
#include "engine/callbacks.h"
#include "engine/quill3_api_parser.h"

#include <atomic>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace QUILL3 {

/// What a reply does to the command that it answers.
enum class Entry {
  Ends, ///< the command is over when the callback has returned
  Stays ///< more replies may come
};

/// One open command: its callbacks and its state. Several threads may try to end it, and exactly one of them
/// does. Threads: the callbacks are set before the entry enters the table and do not change afterwards. The
/// rest is atomic.
class XIDRegistryEntry {
public:
  /// Sets the callback for one kind of reply, at most once for each kind and four in all. An empty one
  /// changes nothing, because that is what each kind has at first.
  template <class Callback>
  void set (BodyNumber reply, const Callback &callback) {
    if (!callback.is_empty () && KELVANE_ASSERT (callback_count_ != std::size (callbacks_)))
      callbacks_[callback_count_++] = {reply, AFunction<void ()> (callback)};
  }
  /// The callback for one kind of reply, of the type with which it was set.
  template <class Callback>
  Callback callback_for (BodyNumber reply) const {
    for (uint32_t i = 0; i != callback_count_; ++i)
      if (callbacks_[i].reply == reply)
        return Callback (callbacks_[i].function);
    return {};
  }
  /// Whether any callback is set.
  bool is_awaited () const { return callback_count_ != 0; }

  /// Whether a thread has claimed the right to end this command.
  bool has_ended () const { return (state_ & ended) != 0; }

  /// Claims the right to end this command. @return true to exactly one caller.
  bool claim ();

  /// How the right to fail a command was claimed.
  enum class Failure {
    refused, ///< another thread ends the command or has ended it
    now,     ///< the caller runs the error callback
    later    ///< a callback is running; its thread runs the error callback after it
  };
  /// `claim` for a failure, which must not overtake a callback that is running.
  Failure claim_failure ();

  /// Called before a callback that leaves the command open. @return false when the command has ended.
  bool begin_item ();
  /// Called after such a callback. @return true when the command has failed meanwhile; the caller then runs
  /// the error callback.
  bool end_item ();

private:
  friend class XIDRegistry;

  // The state is the number of running callbacks that leave the command open, and two marks.
  static constexpr uint32_t ended = 0x80000000;
  static constexpr uint32_t failed_meanwhile = 0x40000000;
  static constexpr uint32_t running = 0x3FFFFFFF;

  struct Callback {
    BodyNumber reply{};
    AFunction<void ()> function{}; ///< its type is that of the reply
  };

  Callback callbacks_[4];
  uint32_t callback_count_ = 0;
  uint32_t number_ = 0; ///< its identifier
  std::atomic<uint32_t> state_{0};
};

/// The open commands of one connection, by identifier. Any thread. No lock is held while a callback runs.
class XIDRegistry {
public:
  using Shared = std::shared_ptr<XIDRegistryEntry>;

  XIDRegistry ();
  XIDRegistry (const XIDRegistry &) = delete;
  XIDRegistry &operator= (const XIDRegistry &) = delete;
  /// Drops all commands without a callback.
  ~XIDRegistry () = default;

  /// Opens a command under the next free identifier of the process.
  /// @return the identifier for the document. When no callback is set, the command is not entered, and its
  /// identifier begins with `none`.
  std::string issue_id (const Shared &entry);

  /// @return the open command of that identifier, or null.
  Shared find_entry (const AString &xid);
  /// Number of open commands. A command counts until its last callback has returned. When `fail_all` runs
  /// during that callback, it stops counting at once.
  uint32_t outstanding_count ();

  /// Passes a reply to its callback, which was set as a @p Callback. Nothing happens when the command is not
  /// open. When the callback is empty, a reply that closes commands still closes this one.
  // C103: doc/compatibility.md
  template <class Callback, class... Values>
  void fire (const AString &xid, Entry effect, BodyNumber reply, Values... values) {
    Shared entry = find_entry (xid);
    if (entry == nullptr || !(effect == Entry::Ends ? entry->claim () : entry->begin_item ()))
      return;
    Finish finish{*this, entry, effect};
    entry->callback_for<Callback> (reply).run (std::move (values)...);
  }

  /// Ends a command without a callback. A callback that is running continues. @return false when the command
  /// was not open.
  bool cancel (const AString &xid);
  /// Takes a command back after it could not be sent. @return true when no callback has ended it or will.
  /// false when another thread ends it, or runs a callback of it and then its error callback.
  bool withdraw (const Shared &entry) noexcept;
  /// Fails one command as `fail_all` does, unless another thread ends it.
  void fail (const Shared &entry) noexcept;
  /// Fails all open commands in text order of their identifiers. Commands that the callbacks open on this
  /// thread fail too. A callback that calls this returns at once, because the running call fails what is
  /// left. Commands that other threads open meanwhile stay open, so that a run always ends. Commands that the
  /// run of another thread has taken are left to it.
  void fail_all () noexcept;

private:
  using Table = std::map<uint64_t, Shared>; ///< by the text order of the identifier
  /// One `fail_all` in progress, on the stack of its thread, with the commands that it still has to fail.
  struct Run {
    const uint32_t thread;
    Table taken{};
    Run *next = nullptr;
  };
  /// Where an entry is, with a null table when it is nowhere.
  struct Location {
    Table *table;
    Table::iterator entry;
  };

  // Ends a reply's callback, also when it has thrown.
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

  uint32_t free_number () KELVANE_REQUIRES (lock_);
  void remove_entry (const Shared &entry) noexcept;
  void end_item (const Shared &entry) noexcept;
  Location locate (uint32_t number) noexcept KELVANE_REQUIRES (lock_);
  Run *run_of_this_thread () noexcept KELVANE_REQUIRES (lock_);
  // Moves all open commands into the run. False when this thread has a run already, which then fails them.
  bool begin_run (Run &run) noexcept;
  // The next command to fail. Null when none is left. The run then ends under the same lock, so that no
  // command is entered into it afterwards.
  Shared next_to_fail (Run &run) noexcept;
  static void run_error (const Shared &entry) noexcept;

  AMutex lock_;                                    ///< recursive
  Table entries_ KELVANE_GUARDED_BY (lock_);       ///< the open commands that no run has taken
  Run *runs_ KELVANE_GUARDED_BY (lock_) = nullptr; ///< one for each thread that is failing commands
};

} // namespace QUILL3
