#pragma once

#include "base/bsem.h"
#include "engine/quill3_api.h"
#include "platform/sockets.h"
#include "platform/threads.h"

#include <atomic>

namespace QUILL3 {

/// One TCP connection while it lasts: its socket and how it stands. Shared by the connection's thread and all
/// who are sending, so that the socket's handle is given back when none of them uses it any more, and what
/// goes wrong with a link is known of that link alone. Threads: any.
struct Link {
  Link () = default;
  Link (const Link &) = delete;
  Link &operator= (const Link &) = delete;
  ~Link () { platform::socket_close (socket); }

  /// Whether bytes may be given to it.
  bool is_up () const { return !closed && !send_failed; }
  /// Ends it: whoever waits in a send or a receive returns.
  void close () {
    closed = true;
    platform::socket_shutdown (socket);
  }

  platform::SocketHandle socket = platform::no_socket; ///< constant once others see the link
  std::atomic<bool> closed{false};
  std::atomic<bool> send_failed{false}; ///< the connection's thread ends the link when it sees this
};

/// The connection to one server: connects, serves, and connects again 100 ms after each failure or loss, for
/// as long as it lives, on one thread of its own. A command is never queued: without a link it fails at once.
///
/// Threads: any, except where said. The thread alone connects, receives, and runs handlers, `on_connected`
/// and `on_disconnected`.
///
/// End: the destructor of the most derived class calls `stop_and_join` before anything else, while the
/// handlers that it overrides can still run. An object held by an `ARef` whose last reference falls on its
/// own thread lives on until that thread has left its loop, and is then destroyed by it. Commands that are
/// open are dropped without a callback.
class Client : public API {
public:
  static constexpr uint16_t server_port = 8913;
  static constexpr uint32_t default_server_address = 0x7F000001;

  /// With the default server address.
  Client ();
  /// @param server_address IPv4 address in host byte order
  explicit Client (uint32_t server_address);
  ~Client () override;

  /// Takes effect at the next attempt to connect. @param server_address IPv4 address in host byte order
  void set_server_address (uint32_t server_address) { server_address_ = server_address; }

  /// Starts the thread, once. Returns at once; the first attempt to connect comes after 100 ms. Where the
  /// system has no thread to give, the object stays without.
  /// @param priority of the thread, relative to normal
  void start_thread (int32_t priority);

  /// Whether there is a link. What is sent on it may fail all the same.
  bool is_connected () const { return connected_; }

  /// Sets what the thread calls when a connection has had nothing to do for a while: after @p seconds at the
  /// earliest, counted from the last call or from when the link came up, looked at about once a second, and
  /// only with fewer than 4 commands open. An empty function ends the calls. The function is called with no
  /// lock held; one that is being called may still run when this returns.
  void set_idle_function (uint32_t seconds, AFunction<void ()> function);

  /// For `ARef`: when the last reference falls on the connection's own thread, takes over the destruction.
  bool defer_destruction (void (*destroy) (void *), void *holder) noexcept;

protected:
  /// Called on the thread when the link has come up, before anything is received. Must not wait for a reply.
  virtual void on_connected () {}
  /// Called on the thread when the link has gone and all commands have failed. What it throws is lost.
  virtual void on_disconnected () {}

  /// Sends all bytes of a document on one link. When the link is lost, the rest of the document must not
  /// appear on the next one.
  void write_document (const XMLTree &document, const AFunction<bool ()> &is_over) override;

  /// One document on its way out: the link that is to carry all of it.
  struct Outgoing {
    /// Sends the next bytes. Without a link that is up, fails all commands.
    void send_bytes (const void *data, uint64_t length);

    Client &client;
    std::shared_ptr<Link> link;
    bool begun = false; ///< some bytes were passed to the link
  };

  /// The present link, null when there is none.
  std::shared_ptr<Link> current_link () noexcept;

  /// Gives bytes to the system. Tests override it to have a send fail or fall short.
  /// @return the number of bytes taken, below 1 after a failure
  virtual int64_t transmit (platform::SocketHandle socket, const void *data, uint64_t length);

  /// Seconds since 1970, for the idle call. Tests override it.
  virtual int64_t seconds_now ();

  /// Whether the end of this object has begun.
  bool stop_requested () const { return stop_requested_; }
  bool is_ending () const override { return stop_requested_; }

  /// Ends the thread and waits until it has left; wakes it from whatever it waits in. Commands that are open
  /// are left alone, later ones fail. Any number of times; on the connection's own thread it does not wait,
  /// and neither for a thread that the system has ended with the process.
  void stop_and_join () noexcept;

private:
  struct StartBlock;

  static void run_thread (void *start_block);
  bool is_own_thread () const;
  void main_loop () noexcept;
  void serve () noexcept;
  void connect_once ();
  void poll_once ();
  void receive (const Link &link);
  void call_idle_function ();
  void disconnect () noexcept;

  void replace_link (std::shared_ptr<Link> link) noexcept;
  bool transmit_all (platform::SocketHandle socket, const char *data, uint64_t length);

  std::atomic<uint32_t> server_address_;
  std::atomic<bool> connected_{false};
  std::atomic<bool> thread_running_{false};
  std::atomic<bool> stop_requested_{false};
  std::atomic<uint32_t> thread_number_{0}; ///< of the thread, 0 before it runs
  platform::ThreadHandle thread_;          ///< set by `start_thread`

  AMutex link_lock_;
  std::shared_ptr<Link> link_ KELVANE_GUARDED_BY (link_lock_);

  platform::WakeUp wake_up_; ///< ends waits for the socket
  bsem stop_semaphore_;      ///< ends the pause before an attempt to connect

  AMutex idle_lock_;
  uint32_t idle_interval_ KELVANE_GUARDED_BY (idle_lock_) = 0; ///< seconds
  AFunction<void ()> idle_function_ KELVANE_GUARDED_BY (idle_lock_);
  int64_t last_idle_time_ = 0; ///< seconds since 1970; the thread's own

  // Set on the thread when the last reference falls there.
  void (*destroy_) (void *) = nullptr;
  void *holder_ = nullptr;
};

} // namespace QUILL3
