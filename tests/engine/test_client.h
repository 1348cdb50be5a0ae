#pragma once

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
  std::atomic<int64_t> clock{-1};                                                 ///< below 0: the real one

  using Client::send_bytes;
  using Client::stop_and_join;
  using Client::stop_requested;

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
    return instead != 0 ? instead : Client::transmit (socket, data, length);
  }
  int64_t seconds_now () override {
    int64_t set = clock;
    return set < 0 ? Client::seconds_now () : set;
  }
};
