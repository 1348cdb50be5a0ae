/**
 * @file orva/call.hpp
 * How one call of a C function becomes an operation: its arguments are checked, its failure gets a kind, its
 * wait is limited, and its result has the form that the caller has chosen.
 */
#ifndef ORVA_CALL_HPP
#define ORVA_CALL_HPP

#include "../orva.h"
#include "limits.hpp"
#include "position.hpp"
#include "result.hpp"
#include "text.hpp"
#include "values.hpp"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <future>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>

namespace orva {

namespace detail {

// --- Failures ----------------------------------------------------------------------------------------------

/** The failure behind a code of the calling thread's last call. */
inline Failure failure_of (std::uint32_t code) {
  const std::string text = last_error ();
  switch (code) {
  case ORVA_NO_CONNECTION:
    return {Kind::not_connected, "The server is not connected"};
  case ORVA_INVALID_HANDLE:
    return {Kind::invalid, "The server or the object is closed"};
  case ORVA_READ_ONLY:
    return {Kind::invalid, "The store is only for reading"};
  case ORVA_WRITE_ONLY:
    return {Kind::invalid, "The store is only for writing"};
  case ORVA_INVALID_ARGUMENT:
    return {Kind::invalid, text};
  case ORVA_TIMEOUT:
    return {Kind::timed_out, "The limit has passed"};
  default:
    break;
  }
  if (text == "Failing all outstanding commands")
    return {Kind::link_lost, "The link was lost before the answer; the outcome is unknown"};
  if (text == "Register for channel item failed unexpectedly")
    return {Kind::timed_out, "The server has not reported the value that it was asked to report"};
  if (text == "Internal software error")
    return {Kind::internal, text};
  if (text == "Not implemented")
    return {Kind::unsupported, "The library cannot do this"};
  return {Kind::refused, text};
}

/** For operations of several calls: goes on only when a call has succeeded. */
inline void must (std::uint32_t code) {
  if (code != ORVA_OK)
    failure_of (code).raise ();
}

inline Failure closed_failure () {
  return {Kind::invalid, "The server object is closed"};
}

/** A call with its arguments, but for the connection and the place of its value. It returns a result code. */
template <class T>
struct CallOf {
  using type = std::function<std::uint32_t (std::uint32_t connection, T &value)>;
};
template <>
struct CallOf<void> {
  using type = std::function<std::uint32_t (std::uint32_t connection)>;
};
template <class T>
using Call = typename CallOf<T>::type;

/** Makes a call on the calling thread. Its exceptions become failures. */
template <class T>
result<T> attempt (std::uint32_t connection, bool needs_link, const Call<T> &operation) {
  try {
    if (connection == 0)
      return closed_failure ();
    if (needs_link && orva_connected (connection) == 0)
      return Failure{Kind::not_connected, "The server is not connected"};
    if constexpr (std::is_void<T>::value) {
      const std::uint32_t code = operation (connection);
      return code == ORVA_OK ? result<T> () : result<T> (failure_of (code));
    } else {
      T value{};
      const std::uint32_t code = operation (connection, value);
      return code == ORVA_OK ? result<T> (std::move (value)) : result<T> (failure_of (code));
    }
  } catch (const error &failed) {
    return failed.failure ();
  } catch (...) {
    return Failure{Kind::internal, "Out of memory"};
  }
}

// --- Arguments ---------------------------------------------------------------------------------------------

/** A number as a C function takes it, or the reason why it must not have it. */
template <class T>
struct Checked {
  T number;
  const char *reason;
  const char *bad () const { return reason; }
  T c () const { return number; }
};

inline Checked<std::uint32_t> checked (Channel channel) {
  return {channel.number (), channel.valid () ? nullptr : "A channel is a letter A to H or a number 0 to 7"};
}
inline Checked<std::uint32_t> checked (Channels channels) {
  return {channels.mask (), !channels.valid ()  ? "A channel is a letter A to H or a number 0 to 7"
                            : channels.empty () ? "The set of channels is empty"
                                                : nullptr};
}
inline Checked<std::uint32_t> checked (Position position) {
  return {static_cast<std::uint32_t> (position.fields ()),
          position.valid () ? nullptr : "A position or length is 0 to 4294967295 fields"};
}
template <std::int64_t Greatest>
Checked<std::uint32_t> checked (Bounded<Greatest> number) {
  return {number.number (), number.valid () ? nullptr : "A number is out of its range"};
}
inline Checked<double> checked (double speed) {
  return {speed, speed == speed ? nullptr : "A speed is not a number"};
}
/** A distance in fields, with its sign. */
struct Distance {
  Position fields;
};
inline Checked<std::int32_t> checked (Distance distance) {
  const std::int64_t fields = distance.fields.fields ();
  const bool good = fields >= -0x80000000LL && fields <= 0x7FFFFFFF;
  return {static_cast<std::int32_t> (fields), good ? nullptr : "A distance does not fit 32 bits"};
}
template <class E, std::enable_if_t<std::is_enum<E>::value, int> = 0>
Checked<std::uint32_t> checked (E word) {
  const auto number = static_cast<std::uint32_t> (word);
  return {number, number <= greatest (word) ? nullptr : "A number is none of its enumeration"};
}
inline Wide checked (std::string_view text) {
  return Wide (text);
}
/** What has been checked before. */
template <class T>
auto checked (const T &ready) -> decltype (ready.bad (), ready.c (), T (ready)) {
  return ready;
}

/** The reason of the first argument that is bad; null when all are good. */
inline const char *first_bad () {
  return nullptr;
}
template <class First, class... Rest>
const char *first_bad (const First &first, const Rest &...rest) {
  return first.bad () != nullptr ? first.bad () : first_bad (rest...);
}

// --- Threads that wait for others --------------------------------------------------------------------------

/**
 * Threads for calls that cannot be interrupted. A job starts at once, on the idle thread if there is one. One
 * thread stays idle for the next job. stop() and the destructor wait for no job: a thread whose call is stuck
 * ends when the call returns.
 */
class Helpers : public std::enable_shared_from_this<Helpers> {
public:
  /** False when the system cannot start a thread; the job is dropped then. */
  bool run (std::function<void ()> job) {
    const std::lock_guard<std::mutex> hold (lock_);
    join_ended ();
    if (idle_) {
      idle_->begin (std::move (job));
      idle_.reset ();
      changed_.notify_all ();
    } else if (!start (std::move (job))) {
      return false;
    }
    ++busy_;
    return true;
  }

  /** How many jobs run now. */
  std::size_t busy () const {
    const std::lock_guard<std::mutex> hold (lock_);
    return busy_;
  }

  /** Ends the idle thread. Jobs that run go on, and their threads end after them. */
  void stop () {
    std::unique_lock<std::mutex> hold (lock_);
    stopped_ = true;
    join_ended ();
    for (const auto &each : workers_)
      if (each != idle_)
        each->thread.detach ();
    workers_.clear ();
    const std::shared_ptr<Worker> last = std::move (idle_);
    changed_.notify_all ();
    hold.unlock ();
    if (last)
      last->thread.join ();
  }

private:
  struct Worker {
    void begin (std::function<void ()> next) {
      job = std::move (next);
      working = true;
    }

    std::thread thread;
    std::function<void ()> job;
    bool working = false;
    bool ended = false;
  };

  /** Requires the lock, which a thread that has ended takes no more. */
  void join_ended () {
    workers_.remove_if ([] (const std::shared_ptr<Worker> &each) {
      if (each->ended)
        each->thread.join ();
      return each->ended;
    });
  }

  /** Requires the lock. */
  bool start (std::function<void ()> job) {
    try {
      const auto worker = std::make_shared<Worker> ();
      worker->begin (std::move (job));
      std::list<std::shared_ptr<Worker>> entry (1, worker);
      worker->thread = std::thread ([self = shared_from_this (), worker] { self->work (worker); });
      if (stopped_)
        worker->thread.detach ();
      else
        workers_.splice (workers_.end (), entry);
      return true;
    } catch (...) {
      return false;
    }
  }

  void work (const std::shared_ptr<Worker> &own) {
    while (own->working) {
      own->job ();
      own->job = nullptr;
      std::unique_lock<std::mutex> hold (lock_);
      --busy_;
      own->working = false;
      if (stopped_ || idle_) {
        own->ended = true;
        return;
      }
      idle_ = own;
      changed_.wait (hold, [&] { return stopped_ || own->working; });
    }
  }

  mutable std::mutex lock_;
  std::condition_variable changed_;
  std::list<std::shared_ptr<Worker>> workers_; ///< those that stop() has not let go
  std::shared_ptr<Worker> idle_;               ///< waits for a job; null when all threads work
  std::size_t busy_ = 0;
  bool stopped_ = false;
};

/** What watches a server; see events.hpp. */
class Watcher {
public:
  virtual ~Watcher () = default;
  virtual void stop () = 0;
};

/** A connection and what belongs to it. Shared by everything that may still use it. */
class Core {
public:
  /** One that is closed. */
  Core () : address_ (0u), connection_ (0) { helpers->stop (); }
  explicit Core (Address address) : address_ (address), connection_ (orva_connect (address.number ())) {}
  ~Core () { close (); }
  Core (const Core &) = delete;
  Core &operator= (const Core &) = delete;

  Address address () const { return address_; }
  /** 0 once it is closed. */
  std::uint32_t connection () const { return connection_; }
  bool connected () const { return orva_connected (connection_) != 0; }

  /** No call starts from now on. Those that run end when the library lets them. */
  void close () {
    const std::uint32_t connection = connection_.exchange (0);
    if (connection == 0)
      return;
    orva_close (connection);
    helpers->stop ();
  }

  /** Notes that the link is up, for age(). */
  void seen () { last_seen_ = std::chrono::steady_clock::now ().time_since_epoch ().count (); }
  /** How long ago the link was last seen up. */
  std::chrono::nanoseconds age () {
    if (connected ()) {
      seen ();
      return std::chrono::nanoseconds (0);
    }
    using Clock = std::chrono::steady_clock;
    return Clock::now () - Clock::time_point (Clock::duration (last_seen_.load ()));
  }

  const std::shared_ptr<Helpers> helpers = std::make_shared<Helpers> ();
  std::atomic<Limit::rep> limit{no_limit.count ()};
  /** Bit n: the library has all values of channel n and answers from memory. */
  std::atomic<std::uint32_t> known_channels{0};

  std::mutex watch_lock;
  std::shared_ptr<Watcher> watch; ///< guarded by watch_lock; none until something is watched
  std::mutex probe_lock;
  std::weak_ptr<Waiter> probe; ///< guarded by probe_lock; the question about health that is under way

private:
  const Address address_;
  std::atomic<std::uint32_t> connection_;
  std::atomic<std::chrono::steady_clock::rep> last_seen_{
      std::chrono::steady_clock::now ().time_since_epoch ().count ()};
};

// --- Limits ------------------------------------------------------------------------------------------------

/** What an operation needs to know beside its arguments. */
struct Context {
  std::shared_ptr<Core> core;
  std::optional<Limit> own_limit;            ///< none: that of the server
  std::shared_ptr<CancelState> cancel_state; ///< null when nobody can cancel

  Limit limit () const { return own_limit ? *own_limit : Limit (core->limit.load ()); }
  bool cancelled () const { return cancel_state && cancel_state->cancelled (); }
};

inline Failure timed_out_failure () {
  return {Kind::timed_out, "No answer within the limit; the outcome is unknown"};
}
inline Failure cancelled_failure () {
  return {Kind::cancelled, "Cancelled before the answer; the outcome is unknown"};
}

/** A call on another thread: all that it reads and writes is here, so the caller may leave. */
template <class T>
struct RemoteCall : Waiter {
  RemoteCall (std::shared_ptr<Core> on, bool link, Call<T> what)
      : core (std::move (on)), needs_link (link), operation (std::move (what)) {}

  void run () {
    {
      const std::lock_guard<std::mutex> hold (lock);
      if (state == State::given_up)
        return;
      state = State::started;
    }
    result<T> value = attempt<T> (core->connection (), needs_link, operation);
    const std::lock_guard<std::mutex> hold (lock);
    outcome.emplace (std::move (value));
    state = State::done;
    changed.notify_all ();
  }

  const std::shared_ptr<Core> core;
  const bool needs_link;
  const Call<T> operation;
  std::optional<result<T>> outcome;
};

/** Makes a call within the limit of the context, on the calling thread when it has none. */
template <class T>
result<T> perform (const Context &context, bool needs_link, Call<T> operation) {
  const Deadline deadline (context.limit ());
  if (deadline.never () && !context.cancel_state)
    return attempt<T> (context.core->connection (), needs_link, operation);
  const auto call = std::make_shared<RemoteCall<T>> (context.core, needs_link, std::move (operation));
  if (context.cancel_state && !context.cancel_state->enter (call))
    return Failure{Kind::cancelled, "Cancelled before it began"};
  const bool running = context.core->helpers->run ([call] { call->run (); });
  std::unique_lock<std::mutex> hold (call->lock);
  const auto ended = [&] { return call->state == Waiter::State::done || call->cancelled; };
  if (running && deadline.never ())
    call->changed.wait (hold, ended);
  else if (running)
    call->changed.wait_until (hold, deadline.at (), ended);
  std::optional<result<T>> outcome = std::move (call->outcome);
  const bool cancelled = call->cancelled;
  if (!outcome)
    call->state = Waiter::State::given_up;
  hold.unlock ();
  if (context.cancel_state)
    context.cancel_state->leave (call);
  if (outcome)
    return std::move (*outcome);
  if (!running)
    return Failure{Kind::internal, "The system has no thread to give"};
  return cancelled ? cancelled_failure () : timed_out_failure ();
}

/** A call that is made when the form of the operation says so. */
template <class T>
struct ReadyCall {
  result<T> operator() () {
    return asks_server ? perform<T> (context, true, std::move (call))
                       : attempt<T> (context.core->connection (), false, call);
  }

  Context context;
  bool asks_server; ///< or the library, which answers by itself: that needs no link and never waits
  Call<T> call;
};

/** A call whose arguments are bad. */
template <class T>
auto bad_call (const char *reason) {
  return [reason] () -> result<T> { return Failure{Kind::invalid, reason}; };
}

/** Calls `look`, which returns an optional result and may wait for a few milliseconds, until it has one, the
 * limit passes or all is over. */
template <class T, class Look>
result<T> look_until (const Context &context, Look look) {
  const Deadline deadline (context.limit ());
  for (;;) {
    if (context.core->connection () == 0)
      return closed_failure ();
    if (std::optional<result<T>> found = look ())
      return std::move (*found);
    if (context.cancelled ())
      return Failure{Kind::cancelled, "Cancelled"};
    if (deadline.passed ())
      return Failure{Kind::timed_out, "The limit has passed"};
    std::this_thread::sleep_for (std::chrono::milliseconds (1));
  }
}

} // namespace detail

// --- Forms -------------------------------------------------------------------------------------------------

/** The form in which operations throw what went wrong and return plain values. */
struct throwing {
  template <class T>
  using of = T;
  template <class T, class F>
  static T deliver (const detail::Context &, F operation) {
    return operation ().value ();
  }
};

/** The form in which operations throw nothing and return result<T>. */
struct returning {
  template <class T>
  using of = result<T>;
  template <class T, class F>
  static result<T> deliver (const detail::Context &, F operation) {
    return operation ();
  }
};

/** The form in which operations return at once, with a future of result<T>. */
struct futures {
  template <class T>
  using of = std::future<result<T>>;
  template <class T, class F>
  static std::future<result<T>> deliver (const detail::Context &context, F operation) {
    const auto promise = std::make_shared<std::promise<result<T>>> ();
    const auto job = std::make_shared<F> (std::move (operation));
    const bool running = context.core->helpers->run ([promise, job] { promise->set_value (made<T> (*job)); });
    if (!running)
      promise->set_value (Failure{Kind::internal, "The system has no thread to give"});
    return promise->get_future ();
  }

private:
  /** Only what a caller has passed can throw here. It must not end the thread, and so the process. */
  template <class T, class F>
  static result<T> made (F &operation) {
    try {
      return operation ();
    } catch (...) {
      return Failure{Kind::internal, "The condition has thrown"};
    }
  }
};

/**
 * What all groups of operations have in common. A group is a small value that can be copied; to move it is to
 * copy it. It holds what it acts on, its time limit, and the form of its results. It does not keep its server
 * open: once the Server object is destroyed, every operation fails with Kind::invalid.
 * @tparam Group the group, as a template of its form
 * @tparam Form throwing, returning or futures
 * @tparam Data what the group acts on
 */
template <template <class> class Group, class Form, class Data>
class Operations {
public:
  /** What an operation with a value of T returns in this form. */
  template <class T>
  using of = typename Form::template of<T>;

  explicit Operations (Data data) : data_ (std::move (data)) {}
  // To move a group is to copy it, so that every object stays usable.
  Operations (const Operations &) = default;
  Operations &operator= (const Operations &) = default;

  /** The same operations, which return result<T> and throw nothing. */
  Group<returning> nothrow () const { return Group<returning> (data_); }
  /** The same operations, which throw. */
  Group<throwing> or_throw () const { return Group<throwing> (data_); }
  /** The same operations, which return at once, with a future of result<T>. The destructor of the future does
   * not wait. Each operation occupies a thread until it has ended. */
  Group<futures> async () const { return Group<futures> (data_); }
  /** The same operations with another limit; no_limit to wait for ever. */
  Group<Form> within (Limit limit) const {
    Data data = data_;
    data.context.own_limit = limit;
    return Group<Form> (std::move (data));
  }
  /** The same operations, which another thread can end. */
  Group<Form> cancelled_by (const Cancel &cancel) const {
    Data data = data_;
    data.context.cancel_state = cancel.state ();
    return Group<Form> (std::move (data));
  }

protected:
  const detail::Context &context () const { return data_.context; }

  /** Asks for a value. @param operation takes the connection, the place of the value (unless T is void) and
   * the arguments as C functions do, and returns a result code; it may outlive the caller. */
  template <class T, class F, class... Arguments>
  of<T> ask (F operation, const Arguments &...arguments) const {
    return make_checked<T> (true, operation, detail::checked (arguments)...);
  }
  /** The same for what the library does by itself: it needs no link, never waits, and has no limit. */
  template <class T, class F, class... Arguments>
  of<T> ask_library (F operation, const Arguments &...arguments) const {
    return make_checked<T> (false, operation, detail::checked (arguments)...);
  }
  /** Sends a command that gives no value: a C function and its arguments. */
  template <class F, class... Arguments>
  of<void> send (F function, const Arguments &...arguments) const {
    return ask<void> (function, arguments...);
  }
  template <class T, class F>
  of<T> deliver (F operation) const {
    return Form::template deliver<T> (data_.context, std::move (operation));
  }
  template <class T>
  of<T> fail (const char *reason) const {
    return deliver<T> (detail::bad_call<T> (reason));
  }

  Data data_;

private:
  template <class T, class F, class... Checked>
  of<T> make_checked (bool asks_server, F operation, Checked... arguments) const {
    if (const char *const reason = detail::first_bad (arguments...))
      return fail<T> (reason);
    auto call = [operation, all = std::make_tuple (std::move (arguments)...)] (auto &&...places) {
      const auto with = [&] (const auto &...each) {
        return operation (std::forward<decltype (places)> (places)..., each.c ()...);
      };
      return std::apply (with, all);
    };
    return deliver<T> (detail::ReadyCall<T>{data_.context, asks_server, std::move (call)});
  }
};

} // namespace orva

#endif
