/**
 * @file orva/server.hpp
 * A server: its connection, and the groups of operations on it.
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
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orva {

/** Disk space, in the unit of field_size. */
struct Disk {
  std::uint64_t total = 0;
  std::uint64_t available = 0;
  std::uint32_t field_size = 0; /**< what one field takes */
};
/** Disk space as time that can be recorded. */
struct DiskTime {
  Position total;
  Position available;
};

namespace detail {

struct ServerData {
  Context context;
};

/** What a Server has that was moved away. */
inline const std::shared_ptr<Core> &closed_core () {
  static const std::shared_ptr<Core> core = std::make_shared<Core> ();
  return core;
}

/** A question that many may wait for; see ServerControl::healthy(). */
using Probe = RemoteCall<std::uint32_t>;

inline std::uint32_t probe_question (std::uint32_t server, std::uint32_t &rate) {
  return orva_video_frequency (server, &rate);
}

/** The question that is under way, or a new one; null when the system cannot start a thread for it. */
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

/** Operations on a server. They are members of Server; this is what `server.nothrow ()` and the like return.
 */
template <class Form>
class ServerControl : public Operations<ServerControl, Form, detail::ServerData> {
  using Base = Operations<ServerControl, Form, detail::ServerData>;

public:
  using Base::Base;
  template <class T>
  using of = typename Base::template of<T>;

  // --- Groups of operations. Making one costs nothing and sends nothing.

  ChannelControl<Form> channel (Channel channel) const {
    return ChannelControl<Form> ({this->context (), channel});
  }
  /** Several channels at once, on one field: a gang. */
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
   * Opens a store and, in a mode that reads, has its folder downloaded in the background. Works while the
   * server is away, too. Costs one thread in a mode that writes.
   * @param prefix of the keys on the server; part of no key here
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
  /** Whether the server is connected at this moment. No traffic, no wait. */
  bool connected () const { return this->context ().core->connected (); }
  /** Waits until the server is connected. Fails with Kind::timed_out after the limit, as every operation. */
  of<void> wait_until_connected () const {
    return this->template deliver<void> ([context = this->context ()] {
      return detail::look_until<void> (context, [&] () -> std::optional<result<void>> {
        return context.core->connected () ? std::optional<result<void>> (result<void> ()) : std::nullopt;
      });
    });
  }
  /**
   * Whether the server answers a question within a limit. The link to a frozen server may still be up, so
   * connected() does not show this. While a question is unanswered no other one is sent, so this may be
   * called again and again.
   */
  of<bool> healthy (Limit limit = std::chrono::seconds (1)) const {
    return this->template deliver<bool> (
        [core = this->context ().core, limit] () -> result<bool> { return detail::answers (core, limit); });
  }
  /** How many calls are running on threads of this object: calls with a limit, including those that are
   * stuck. */
  std::size_t calls_under_way () const { return this->context ().core->helpers->busy (); }

  /**
   * With true, commands return as soon as they are sent and their outcome is lost; questions still wait for
   * their answers. With false, the state of a new server, commands wait too. Holds for all users of this
   * connection.
   */
  void ignore_answers (bool ignore) const {
    orva_synchronous (this->context ().core->connection (), ignore ? 1 : 0);
  }
  /** Waits until no command is unanswered: for those that were sent without waiting. */
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

  // --- What the server says of itself. Each is one round trip or more; nothing is cached.

  of<std::string> name () const {
    return this->template ask<std::string> ([] (std::uint32_t server, std::string &name) {
      return detail::read_text ([=] (OrvaStringBuffer text) { return orva_server_name (server, text); },
                                name);
    });
  }
  /** Standard, rate and resolution: three round trips. See Video for what the library cannot tell. */
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
  /** As time that can be recorded, in whole frames. */
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
   * an event when a value, a clip or a directory has changed. Changes that come close together may become one
   * event: a value has its last state then, and a clip that is added and soon deleted is only ClipDeleted.
   * Handlers of one server run one after the other on a thread of its own, which starts with the first
   * subscription. They may use the server, but delay its other handlers. What they throw is dropped. There is
   * no event for a link that is lost for less than 20 ms, nor for what happens to clips and directories while
   * the link is down.
   * @throws invalid when the server is closed, internal when the system cannot start a thread; in every form
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
  /** How long each operation may take, unless it is given another limit; no_limit to wait for ever. */
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
 * Any number of threads may use it at a time. It must not be moved, closed or destroyed meanwhile.
 */
class Server : public ServerControl<throwing> {
public:
  /** Opens a connection. Returns at once. @throws invalid for a bad address, internal without memory */
  explicit Server (Address address, Options options = {}) : Server (open (address, options).value ()) {}

  /** The same without exceptions. */
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
   * Closes the connection. No operation starts from now on, and no handler runs. Calls under way end when the
   * server answers or the link is lost. This waits for a running handler, and for 20 ms if anything is
   * watched, but never for the server.
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

  /** Sets the limit of all operations that are not given one, from now on. */
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

/** Waits until one of several servers is connected. @return null when the limit has passed */
inline const Server *wait_any (const std::vector<const Server *> &servers, Limit limit = no_limit) {
  const detail::Deadline deadline (limit);
  for (;;) {
    for (const Server *const server : servers)
      if (server->connected ())
        return server;
    if (deadline.passed ())
      return nullptr;
    std::this_thread::sleep_for (std::chrono::milliseconds (1));
  }
}

/** Waits until all of several servers are connected. @return false when the limit has passed */
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
