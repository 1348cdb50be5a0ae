/**
 * @file orva/server.hpp
 * A server: its connection, its operations, and the groups of further operations.
 */
#ifndef ORVA_SERVER_HPP
#define ORVA_SERVER_HPP

#include "call.hpp"
#include "channel.hpp"
#include "clip.hpp"
#include "events.hpp"
#include "store.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace orva {

/** Disk space, in the unit of field_size. */
struct Disk {
  std::uint64_t total = 0;
  std::uint64_t available = 0;
  std::uint32_t field_size = 0; /**< the space that one field takes */
};
/** Disk space as recording time, in whole frames. */
struct DiskTime {
  Position total;
  Position available;
};

namespace detail {

struct ServerData {
  Context context;
};

/** The core of a Server object that was moved from. */
inline const std::shared_ptr<Core> &closed_core () {
  static const std::shared_ptr<Core> core = std::make_shared<Core> ();
  return core;
}

/** A question that several callers may wait for; see ServerControl::healthy(). */
using Probe = RemoteCall<std::uint32_t>;

inline std::uint32_t probe_question (std::uint32_t server, std::uint32_t &rate) {
  return orva_video_frequency (server, &rate);
}

/** The question that is not answered yet, or a new one. Null when the system cannot start a thread for it. */
inline std::shared_ptr<Probe> probe_of (const std::shared_ptr<Core> &core) {
  const std::lock_guard<std::mutex> hold_core (core->probe_lock);
  if (const auto running = std::static_pointer_cast<Probe> (core->probe.lock ())) {
    const std::lock_guard<std::mutex> hold (running->lock);
    if (running->state != Waiter::State::done)
      return running;
  }
  const auto probe = std::make_shared<Probe> (core, true, probe_question);
  if (!core->helpers->run ([probe] { probe->run (); }))
    return nullptr;
  core->probe = probe;
  return probe;
}

inline bool answers (const std::shared_ptr<Core> &core, Limit limit) {
  if (core->connection () == 0 || !core->connected ())
    return false;
  const auto probe = probe_of (core);
  if (!probe)
    return false;
  const Deadline deadline (limit);
  std::unique_lock<std::mutex> hold (probe->lock);
  const auto done = [&] { return probe->state == Waiter::State::done; };
  if (deadline.never ())
    probe->changed.wait (hold, done);
  else
    probe->changed.wait_until (hold, deadline.at (), done);
  return done () && (*probe->outcome || probe->outcome->failure ().kind == Kind::refused);
}

template <class E>
std::uint32_t read_word (std::uint32_t (*get) (std::uint32_t, std::uint32_t *), std::uint32_t server,
                         E &word) {
  std::uint32_t number = 0;
  const std::uint32_t code = get (server, &number);
  word = static_cast<E> (number);
  return code;
}

} // namespace detail

/** Operations on a server. Server inherits them. nothrow(), async() and so on return this group. */
template <class Form>
class ServerControl : public Operations<ServerControl, Form, detail::ServerData> {
  using Base = Operations<ServerControl, Form, detail::ServerData>;

public:
  using Base::Base;
  template <class T>
  using of = typename Base::template of<T>;

  // --- Groups of operations. Making one is cheap and sends nothing.

  ChannelControl<Form> channel (Channel channel) const {
    return ChannelControl<Form> ({this->context (), channel});
  }
  /** A gang: several channels, which act on the same field. */
  GangControl<Form> channels (Channels channels) const {
    return GangControl<Form> ({this->context (), channels});
  }
  ClipControl<Form> clip (std::string_view name) const {
    return ClipControl<Form> ({this->context (), std::string (name)});
  }
  VirtualClipControl<Form> virtual_clip (std::string_view name) const {
    return VirtualClipControl<Form> ({this->context (), std::string (name)});
  }
  /**
   * Opens a store, also while the server is not connected. A mode that reads downloads the folder in the
   * background. A mode that writes costs one thread.
   * @param prefix what all keys of this store begin with on the server. The keys here are without it.
   */
  of<StoreControl<Form>> store (std::string_view folder, StoreMode mode, std::string_view prefix = "") const {
    using Control = StoreControl<Form>;
    auto mode_checked = detail::checked (mode);
    if (mode_checked.number == 0)
      mode_checked.reason = "A number is none of its enumeration";
    auto folder_checked = detail::checked (folder);
    auto prefix_checked = detail::checked (prefix);
    if (const char *const bad = detail::first_bad (mode_checked, folder_checked, prefix_checked))
      return this->template fail<Control> (bad);
    const detail::Context context = this->context ();
    const auto open = [helpers = context.core->helpers, mode_checked, folder_checked,
                       prefix_checked] (std::uint32_t server, std::shared_ptr<detail::OpenStore> &store) {
      std::uint32_t handle = 0;
      const std::uint32_t code =
          orva_open_kvstore (server, folder_checked.c (), prefix_checked.c (), mode_checked.c (), &handle);
      if (code == ORVA_OK)
        store = std::make_shared<detail::OpenStore> (helpers, handle);
      return code;
    };
    return this->template deliver<Control> ([context, open] () -> result<Control> {
      const auto store = detail::perform<std::shared_ptr<detail::OpenStore>> (context, false, open);
      if (!store)
        return store.failure ();
      return Control ({context, *store});
    });
  }

  // --- The connection

  Address address () const { return this->context ().core->address (); }
  /** Whether the server is connected at this moment. Sends nothing and does not wait. */
  bool connected () const { return this->context ().core->connected (); }
  /** Waits until the server is connected. Fails with Kind::timed_out when the limit has passed. */
  of<void> wait_until_connected () const {
    return this->template deliver<void> ([context = this->context ()] {
      return detail::look_until<void> (context, [&] () -> std::optional<result<void>> {
        return context.core->connected () ? std::optional<result<void>> (result<void> ()) : std::nullopt;
      });
    });
  }
  /**
   * Whether the server answers a question within a limit. connected() does not show this, because the link to
   * a frozen server may stay up. While a question is not answered, no other one is sent. So it costs little
   * to call this often.
   * @param limit of this call. The limit of the server and cancelled_by() have no effect.
   */
  of<bool> healthy (Limit limit = std::chrono::seconds (1)) const {
    return this->template deliver<bool> (
        [core = this->context ().core, limit] () -> result<bool> { return detail::answers (core, limit); });
  }
  /** The number of calls on helper threads of this server, such as calls with a limit and calls of the async
   * form. It includes calls whose callers no longer wait. */
  std::size_t calls_under_way () const { return this->context ().core->helpers->busy (); }

  /**
   * Chooses whether commands wait for their answers. With true they return as soon as they are sent, and
   * their outcome is lost. With false they wait; this is the state of a new server. Operations that return a
   * value always wait. The choice applies to all users of this connection.
   */
  void ignore_answers (bool ignore) const {
    orva_synchronous (this->context ().core->connection (), ignore ? 1 : 0);
  }
  /** Waits until all commands are answered, including those that were sent without waiting. */
  of<void> wait_for_answers () const {
    return this->template deliver<void> ([context = this->context ()] {
      return detail::perform<void> (context, false, [] (std::uint32_t server) -> std::uint32_t {
        orva_sync (server);
        return ORVA_OK;
      });
    });
  }

  // --- Clips and directories

  /** The names of all clips, in one round trip. */
  of<std::vector<std::string>> clips () const {
    return names (orva_open_clip_list, orva_get_clip_name, orva_close_clip_list);
  }
  /** The names of all directories, in one round trip. */
  of<std::vector<std::string>> directories () const {
    return names (orva_open_directory_list, orva_get_directory_name, orva_close_directory_list);
  }
  of<void> create_directory (std::string_view name) const { return this->send (orva_create_directory, name); }

  // --- Information about the server. Each operation costs one round trip or more. Nothing is cached.

  of<std::string> name () const {
    return this->template ask<std::string> ([] (std::uint32_t server, std::string &name) {
      return detail::read_text ([=] (OrvaStringBuffer text) { return orva_server_name (server, text); },
                                name);
    });
  }
  /** Standard, rate and resolution. Three round trips. See Video for unknown standards. */
  of<Video> video () const {
    return this->template ask<Video> ([] (std::uint32_t server, Video &video) -> std::uint32_t {
      detail::must (detail::read_word (orva_video_standard, server, video.standard));
      detail::must (detail::read_word (orva_video_frequency, server, video.rate));
      return detail::read_word (orva_video_resolution, server, video.resolution);
    });
  }
  of<Disk> disk () const {
    return this->template ask<Disk> ([] (std::uint32_t server, Disk &disk) {
      return orva_disk_usage1 (server, &disk.total, &disk.available, &disk.field_size);
    });
  }
  /** The disk space as recording time. */
  of<DiskTime> disk_time () const {
    return this->template ask<DiskTime> ([] (std::uint32_t server, DiskTime &time) {
      std::uint32_t total = 0, available = 0;
      const std::uint32_t code = orva_disk_usage2 (server, &total, &available);
      time = {total, available};
      return code;
    });
  }

  // --- Events

  /**
   * Calls a handler for each event, until the subscription or the server is destroyed. The first events are
   * the present state: LinkUp or LinkDown, and each watched value as soon as it is known. After that there is
   * an event when a value, a clip or a directory has changed.
   *
   * Changes that come close together may become one event. For a value it has the last state. A clip that is
   * added and soon deleted is only ClipDeleted. There may be no event for a link that is lost for less than
   * 20 ms. There is none for changes of clips and directories while the link is down.
   *
   * The handlers of one server run one after the other, on a thread that starts with the first subscription.
   * They may use the server, but a slow handler delays the others. Exceptions of handlers are ignored.
   * @throws invalid when the server is closed or a channel is bad, internal when the system cannot start a
   *   thread. All forms throw them.
   */
  Subscription on_event (std::function<void (const Event &)> handler, Interest interest = {}) const {
    return Subscription (detail::subscribe<> (this->context ().core, interest, std::move (handler)));
  }
  /** The same for events of one kind: `server.on<orva::StatusChanged> ([] (const auto &event) { ... })`. */
  template <class T>
  Subscription on (std::function<void (const T &)> handler, Interest interest = {}) const {
    return on_event (
        [handler = std::move (handler)] (const Event &event) {
          if (const T *const what = event.as<T> ())
            handler (*what);
        },
        interest);
  }

private:
  template <class Open, class Close>
  of<std::vector<std::string>> names (Open open, detail::NameList::Next next, Close close) const {
    using Names = std::vector<std::string>;
    return this->template ask<Names> ([open, next, close] (std::uint32_t server, Names &all) {
      const auto opened = [=] (std::uint32_t *handle) { return open (server, handle); };
      return detail::read_names (opened, next, close, all);
    });
  }
};

/** How a server is opened. */
struct Options {
  /** The limit of each operation without a limit of its own. With no_limit they wait for ever. */
  Limit limit = std::chrono::seconds (10);
};

/**
 * A connection to a server. The library keeps it up by itself until this object is destroyed.
 *
 *     orva::Server server ("10.0.0.5");
 *     server.wait_until_connected ();
 *     server.channel (orva::A).load ("NEWS/OPENER");
 *     server.channel (orva::A).play (1.0);
 *
 * Any number of threads may use it at the same time. It must not be moved or destroyed meanwhile.
 */
class Server : public ServerControl<throwing> {
public:
  /** Opens a connection and returns at once. @throws invalid for a bad address, internal without memory */
  explicit Server (Address address, Options options = {}) : Server (open (address, options).value ()) {}

  /** The same, with a result instead of an exception. */
  static result<Server> open (Address address, Options options = {}) {
    if (!address.valid ())
      return Failure{Kind::invalid, "An address is four numbers from 0 to 255, as in 10.0.0.5"};
    auto core = std::make_shared<detail::Core> (address);
    if (core->connection () == 0)
      return Failure{Kind::internal, "Out of memory"};
    core->limit = options.limit.count ();
    return Server (std::move (core));
  }

  ~Server () { close (); }
  Server (const Server &) = delete;
  Server &operator= (const Server &) = delete;
  Server (Server &&other) noexcept
      : Server (std::exchange (other.data_.context.core, detail::closed_core ())) {}
  Server &operator= (Server &&other) noexcept {
    if (this != &other) {
      close ();
      data_.context.core = std::exchange (other.data_.context.core, detail::closed_core ());
    }
    return *this;
  }

  /**
   * Closes the connection. From now on no operation starts and no handler is called. Running calls end when
   * the server answers or the link is lost. This waits until a running handler has returned, and up to 20 ms
   * when there was a subscription. It never waits for the server.
   */
  void close () {
    const std::shared_ptr<detail::Core> core = data_.context.core;
    core->close ();
    std::shared_ptr<detail::Watcher> watch;
    {
      const std::lock_guard<std::mutex> hold (core->watch_lock);
      watch = std::exchange (core->watch, nullptr);
    }
    if (watch)
      watch->stop ();
  }

  /** Sets the limit of all operations without a limit of their own, from now on. */
  void set_limit (Limit limit) { data_.context.core->limit = limit.count (); }

private:
  explicit Server (std::shared_ptr<detail::Core> core)
      : ServerControl<throwing> (detail::ServerData{{std::move (core), {}, nullptr}}) {}
};

template <class E>
void QueueOf<E>::watch (const Server &server, Interest interest) {
  const auto mark = std::make_shared<char> ();
  auto put = [state = state_, mark] (const Event &event) { state->put (mark.get (), event); };
  const std::lock_guard<std::mutex> hold (lock_);
  subscriptions_.push_back (server.on_event (std::move (put), interest));
}

/**
 * Waits until one of several servers is connected.
 * @return that server, or null when the limit has passed or all of them are closed
 */
inline const Server *wait_any (const std::vector<const Server *> &servers, Limit limit = no_limit) {
  const detail::Deadline deadline (limit);
  for (;;) {
    bool any_open = false;
    for (const Server *const server : servers) {
      const result<void> connected = server->nothrow ().within (Limit (0)).wait_until_connected ();
      if (connected)
        return server;
      any_open = any_open || connected.failure ().kind != Kind::invalid;
    }
    if (!any_open || deadline.passed ())
      return nullptr;
    std::this_thread::sleep_for (std::chrono::milliseconds (1));
  }
}

/**
 * Waits until each of several servers has been connected.
 * @return false when the limit has passed or one of them is closed
 */
inline bool wait_all (const std::vector<const Server *> &servers, Limit limit = no_limit) {
  const detail::Deadline deadline (limit);
  for (const Server *const server : servers) {
    const Limit left = deadline.left ();
    if (!server->nothrow ().within (left).wait_until_connected ())
      return false;
  }
  return true;
}

} // namespace orva

#endif
