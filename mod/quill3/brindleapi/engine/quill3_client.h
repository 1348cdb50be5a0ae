#pragma once

#include "base/bsem.h"
#include "engine/quill3_api.h"
#include "platform/sockets.h"
#include "platform/threads.h"

#include <atomic>

namespace QUILL3 {

/// One TCP connection: its socket and its state. The connection's thread and all senders share it. So the
/// socket is closed when none of them uses it any more, and a failure is known of this link alone. Threads:
/// any.
struct Link {
  Link () = default;
  Link (const Link &) = delete;
  Link &operator= (const Link &) = delete;
  ~Link () { platform::socket_close (socket); }

  /// Whether bytes can be sent on it.
  bool is_up () const { return !closed && !send_failed; }
  /// Ends it. Waiting sends and receives return.
  void close () {
    closed = true;
    platform::socket_shutdown (socket);
  }

  platform::SocketHandle socket = platform::no_socket; ///< constant once others see the link
  std::atomic<bool> closed{false};
  std::atomic<bool> send_failed{false}; ///< the connection's thread ends the link when it sees this
};

/// The connection to one server. It has a thread of its own, which connects and receives. After a failure or
/// a loss the thread connects again, 100 ms later, until this object ends. A command is never queued: without
/// a link it fails at once.
///
/// Threads: any, except where a comment says otherwise. Handlers, `on_connected` and `on_disconnected` run on
/// the connection's thread only.
///
/// End: the destructor of the most derived class must call `stop_and_join` first, because until then its
/// handlers may run. When the last `ARef` to an object is dropped on the object's own thread, the object
/// lives until that thread has left its loop, and the thread destroys it. Open commands are dropped without a
/// callback.
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

  /// Starts the thread; later calls do nothing. Returns at once. The first attempt to connect follows after
  /// 100 ms. When the system has no thread left, the object stays without one.
  /// @param priority of the thread, relative to normal
  void start_thread (int32_t priority);

  /// Whether there is a link. A send may fail all the same.
  bool is_connected () const { return connected_; }

  /// Sets a function that the thread calls while the connection is idle, with fewer than 4 open commands. The
  /// first call follows @p seconds after the link came up, each further call @p seconds after the last. The
  /// thread tests this about once a second. An empty function ends the calls. No lock is held during a call,
  /// and a call may still be running when this returns.
  void set_idle_function (uint32_t seconds, AFunction<void ()> function);

  /// For `ARef`: takes over the destruction when the last reference is dropped on the connection's own
  /// thread.
  bool defer_destruction (void (*destroy) (void *), void *holder) noexcept;

protected:
  /// Called on the thread when the link is up, before anything is received. It must not wait for a reply.
  virtual void on_connected () {}
  /// Called on the thread when the link is lost and all commands have failed. Exceptions are ignored.
  virtual void on_disconnected () {}

  /// Sends all bytes of a document on one link. When the link is lost, the rest of the document must not
  /// appear on the next one.
  void write_document (const CommandDocument &document, const AFunction<bool ()> &is_over) override;

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

  /// Passes bytes to the system. Tests override it to simulate a failed or short send.
  /// @return the number of bytes taken, below 1 after a failure
  virtual int64_t transmit (platform::SocketHandle socket, const void *data, uint64_t length);

  /// Seconds since 1970, for the idle call. Tests override it.
  virtual int64_t seconds_now ();

  /// Whether the end of this object has begun.
  bool stop_requested () const { return stop_requested_; }
  bool is_ending () const override { return stop_requested_; }

  /// Ends the thread and waits until it has left. It interrupts all waits of the thread. Open commands are
  /// dropped without a callback, later ones fail. It may be called again. It does not wait on the
  /// connection's own thread, nor for a thread that the system has ended with the process.
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
  /// The present link, for the thread itself while it is connected. Only that thread replaces the link, so it
  /// needs no lock.
  const Link &own_link () const KELVANE_NO_THREAD_SAFETY_ANALYSIS { return *link_; }
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
  std::atomic<bool> has_idle_function_{false};
  uint32_t idle_interval_ KELVANE_GUARDED_BY (idle_lock_) = 0; ///< seconds
  AFunction<void ()> idle_function_ KELVANE_GUARDED_BY (idle_lock_);
  int64_t last_idle_time_ = 0; ///< seconds since 1970; the thread's own

  // Set when the last reference is dropped on the thread itself.
  void (*destroy_) (void *) = nullptr;
  void *holder_ = nullptr;
};

} // namespace QUILL3
