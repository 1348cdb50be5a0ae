#pragma once

#include "base/amethod.h"
#include "engine/quill3_api.h"
#include "engine/recorder.h"

#include <algorithm>
#include <list>
#include <mutex>
#include <string>
#include <vector>

/// A log of the calls of callbacks. `make` and its relatives return a callback with a name; each call of it
/// adds a line with that name and the values it was called with. Any thread may use it. It must outlive its
/// callbacks.
class Notes {
public:
  std::vector<std::string> lines () const {
    std::lock_guard hold (lock_);
    return lines_;
  }
  size_t count () const { return lines ().size (); }
  size_t count (const std::string &line) const {
    std::vector<std::string> all = lines ();
    return static_cast<size_t> (std::count (all.begin (), all.end (), line));
  }
  void add (const std::string &line) {
    std::lock_guard hold (lock_);
    lines_.push_back (line);
  }
  /// Returns the lines and removes them, so that the next check sees new ones only.
  std::vector<std::string> take_lines () {
    std::lock_guard hold (lock_);
    return std::exchange (lines_, {});
  }

  /// A callback of any kind: `notes.make<callback::clipid> ("clip")`.
  template <class Callback>
  Callback make (const std::string &name) {
    return Maker<Callback>::bind (remember (name));
  }
  QUILL3::callback::ok ok (const std::string &name = "ok") { return make<QUILL3::callback::ok> (name); }
  QUILL3::callback::error error (const std::string &name = "error") {
    return make<QUILL3::callback::error> (name);
  }

private:
  struct Named {
    Notes *notes;
    std::string name;
  };
  template <class Callback>
  struct Maker;
  template <class... A>
  struct Maker<AFunction<void (A...)>> {
    static AFunction<void (A...)> bind (Named *named) {
      return AFunction<void (A...)>::with_pointer (&call, named);
    }
    static void call (void *given, A... values) {
      auto *named = static_cast<Named *> (given);
      std::string line = named->name;
      ((line += " " + show::text (values)), ...);
      named->notes->add (line);
    }
  };

  Named *remember (const std::string &name) {
    std::lock_guard hold (lock_);
    return &names_.emplace_back (Named{this, name});
  }

  mutable std::mutex lock_;
  std::vector<std::string> lines_;
  std::list<Named> names_;
};

/// The protocol engine without a socket: it keeps what it sends for the test to look at, and the test passes
/// in what it receives.
class WireInHand : public QUILL3::API {
public:
  std::string sent;                ///< all bytes
  std::vector<std::string> pieces; ///< as they were handed over
  bool link_is_up = true;

  void receive (const std::string &bytes) { feed_bytes (bytes.data (), bytes.size ()); }
  void reply (const AString &xid, const std::string &body) {
    receive ("<reply><xid>" + xid.to_std_string () + "</xid>" + body + "</reply>");
  }
  std::string take_sent () {
    std::vector<std::string> ().swap (pieces);
    return std::exchange (sent, {});
  }

protected:
  void write_document (const QUILL3::CommandDocument &document, const AFunction<bool ()> &is_over) override {
    if (!is_over.run ())
      render (document, AMethod::bind (this, &WireInHand::send_bytes));
  }

  virtual void send_bytes (const void *data, uint64_t length) {
    if (!link_is_up) {
      fail_all_commands ();
      return;
    }
    pieces.emplace_back (static_cast<const char *> (data), length);
    sent += pieces.back ();
  }
};

inline uint64_t number_of (const AString &xid) {
  uint64_t number = 0;
  xid.strip_prefix ("none").to_uint64 (&number);
  return number;
}
