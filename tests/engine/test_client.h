#pragma once

#include "base/amethod.h"
#include "engine/notes.h"
#include "engine/quill3_client.h"
#include "support/fake_server.h"

#include <atomic>
#include <functional>

/// A connection that notes what happens to it: "connected", "disconnected", and of reports those of clips.
/// What a test wants to do at these places it sets before the start.
class TestClient : public QUILL3::Client {
public:
  explicit TestClient (Notes &to, uint32_t address) : Client (address), notes (to) {}
  ~TestClient () override {
    stop_and_join ();
    if (when_destroyed)
      when_destroyed ();
  }

  Notes &notes;
  std::function<void ()> when_connected;
  std::function<void ()> when_disconnected;
  std::function<void (const std::string &)> when_clip;
  std::function<void ()> when_destroyed;
  std::function<int64_t (const void *data, uint64_t length)> instead_of_transmit; ///< 0: transmit as usual
  /// Called between taking a link and writing to it, with whether the command is over; gives what to believe.
  std::function<bool (bool is_over)> when_asked;
  std::atomic<int64_t> clock{-1}; ///< below 0: the real one

  std::atomic<platform::SocketHandle> last_socket{platform::no_socket}; ///< of the latest transmit
  std::atomic<bool> in_transmit{false};                                 ///< of one sender

  using Client::stop_and_join;
  using Client::stop_requested;

  /// Sends bytes as a piece of a document.
  void send_bytes (const void *data, uint64_t length) {
    Outgoing{*this, current_link ()}.send_bytes (data, length);
  }

  bool wait_connected (bool wanted = true) {
    return support::wait_until ([&] { return is_connected () == wanted; });
  }
  bool wait_noted (const std::string &line, size_t times = 1) {
    return support::wait_until ([&] { return notes.count (line) >= times; });
  }

protected:
  void on_connected () override {
    notes.add ("connected");
    if (when_connected)
      when_connected ();
  }
  void on_disconnected () override {
    notes.add ("disconnected");
    if (when_disconnected)
      when_disconnected ();
  }
  void on_clip_created (AString ClipID) override {
    notes.add ("created " + ClipID.to_std_string ());
    if (when_clip)
      when_clip (ClipID.to_std_string ());
  }
  int64_t transmit (platform::SocketHandle socket, const void *data, uint64_t length) override {
    int64_t instead = instead_of_transmit ? instead_of_transmit (data, length) : 0;
    if (instead != 0)
      return instead;
    last_socket = socket;
    in_transmit = true;
    int64_t sent = Client::transmit (socket, data, length);
    in_transmit = false;
    return sent;
  }
  void write_document (const QUILL3::CommandDocument &document, const AFunction<bool ()> &is_over) override {
    struct Asked {
      const TestClient &client;
      const AFunction<bool ()> &is_over;
      bool ask () { return client.when_asked (is_over.run ()); }
    } asked{*this, is_over};
    Client::write_document (document, when_asked ? AMethod::bind (&asked, &Asked::ask) : is_over);
  }
  int64_t seconds_now () override {
    int64_t set = clock;
    return set < 0 ? Client::seconds_now () : set;
  }
};
