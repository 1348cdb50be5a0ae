/**
 * @file orva/call.hpp
 * Makes operations from C functions. An operation checks its arguments, calls the function within a time
 * limit, finds the kind of a failure, and returns its result in the form that the caller has chosen.
 */
#ifndef ORVA_CALL_HPP
#define ORVA_CALL_HPP

#include "../orva.h"
#include "limits.hpp"
#include "position.hpp"
#include "result.hpp"
#include "text.hpp"
#include "values.hpp"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
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

/**
 * The failure of the calling thread's last call.
 * @param code what the call returned, not ORVA_OK
 *
 * Many causes have the code ORVA_ERROR. The library's own failures have the fixed texts below. Every other
 * text is a refusal by the server.
 */
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

/** For operations of several calls: throws the failure of a call, so that no further one is made. */
inline void must (std::uint32_t code) {
  if (code != ORVA_OK)
    failure_of (code).raise ();
}

inline Failure closed_failure () {
  return {Kind::invalid, "The server object is closed"};
}

/** A call with its arguments bound. It takes the connection and, unless T is void, the variable for the
 * value. It returns a result code. */
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

/**
 * Makes a call on the calling thread. An exception of the call becomes a failure.
 * @param needs_link when true and the link is down, fails with Kind::not_connected and makes no call
 */
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

/** A number in the form that a C function takes, or the reason why it is not valid. */
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
/** A distance in fields. It may be negative. */
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
/** An argument that is already checked. */
template <class T>
auto checked (const T &ready) -> decltype (ready.bad (), ready.c (), T (ready)) {
  return ready;
}

/** The reason why the first bad argument is not valid; null when all arguments are valid. */
inline const char *first_bad () {
  return nullptr;
}
template <class First, class... Rest>
const char *first_bad (const First &first, const Rest &...rest) {
  return first.bad () != nullptr ? first.bad () : first_bad (rest...);
}

// --- Helper threads ----------------------------------------------------------------------------------------

/**
 * Threads for calls that cannot be interrupted. A job starts at once, on the idle thread if there is one,
 * else on a new thread. One thread stays idle for the next job. The owner must call stop(). It waits for no
 * job: a thread whose call does not return yet ends after the call.
 */
class Helpers : public std::enable_shared_from_this<Helpers> {
public:
  /** Starts a job, also after stop(). Returns false without it when the system cannot start a thread. */
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

  /** The number of jobs that are running. */
  std::size_t busy () const {
    const std::lock_guard<std::mutex> hold (lock_);
    return busy_;
  }

  /** Ends the idle thread. Running jobs continue, and each thread ends after its job. */
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

  /** Requires the lock. A thread that has ended does not take the lock again, so it can be joined. */
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
  std::list<std::shared_ptr<Worker>> workers_; ///< all threads, until stop() detaches them
  std::shared_ptr<Worker> idle_;               ///< waits for a job; null when all threads are working
  std::size_t busy_ = 0;
  bool stopped_ = false;
};

/** Watches a server for events; see events.hpp. */
class Watcher {
public:
  virtual ~Watcher () = default;
  virtual void stop () = 0;
};

/** A connection and everything that belongs to it. Shared by all objects that may use it. */
class Core {
public:
  /** A core that is closed from the beginning. */
  Core () : address_ (0u), connection_ (0) { helpers->stop (); }
  explicit Core (Address address) : address_ (address), connection_ (orva_connect (address.number ())) {}
  ~Core () { close (); }
  Core (const Core &) = delete;
  Core &operator= (const Core &) = delete;

  Address address () const { return address_; }
  /** The connection number; 0 when the core is closed. */
  std::uint32_t connection () const { return connection_; }
  bool connected () const { return orva_connected (connection_) != 0; }

  /** Closes the connection. No call starts from now on. Running calls end when the server answers or the link
   * is lost. */
  void close () {
    const std::uint32_t connection = connection_.exchange (0);
    if (connection == 0)
      return;
    orva_close (connection);
    helpers->stop ();
  }

  /** Records for age() that the link is up now. */
  void seen () { last_seen_ = std::chrono::steady_clock::now ().time_since_epoch ().count (); }
  /** The time since the link was last seen up; 0 while it is up. */
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
  /** Bit n is 1 when the library has all values of channel n, so that queries of it send nothing. */
  std::atomic<std::uint32_t> known_channels{0};

  std::mutex watch_lock;
  std::shared_ptr<Watcher> watch; ///< guarded by watch_lock; null until the first subscription
  std::mutex probe_lock;
  std::weak_ptr<Waiter> probe; ///< guarded by probe_lock; the last question of healthy()

private:
  const Address address_;
  std::atomic<std::uint32_t> connection_;
  std::atomic<std::chrono::steady_clock::rep> last_seen_{
      std::chrono::steady_clock::now ().time_since_epoch ().count ()};
};

// --- Limits ------------------------------------------------------------------------------------------------

/** Everything that an operation needs besides its arguments. */
struct Context {
  std::shared_ptr<Core> core;
  std::optional<Limit> own_limit;            ///< without a value: the limit of the server
  std::shared_ptr<CancelState> cancel_state; ///< null for an operation without a Cancel

  Limit limit () const { return own_limit ? *own_limit : Limit (core->limit.load ()); }
  bool cancelled () const { return cancel_state && cancel_state->cancelled (); }
};

inline Failure timed_out_failure () {
  return {Kind::timed_out, "No answer within the limit; the outcome is unknown"};
}
inline Failure cancelled_failure () {
  return {Kind::cancelled, "Cancelled before the answer; the outcome is unknown"};
}

/** A call on another thread. It owns everything that it uses, so its caller need not wait for it. */
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

/** Makes a call within a limit, on a helper thread. Without limit and Cancel it uses the calling thread. */
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

/** A call with checked arguments. The form of the operation decides when and on which thread it is made. */
template <class T>
struct ReadyCall {
  result<T> operator() () {
    return asks_server ? perform<T> (context, true, std::move (call))
                       : attempt<T> (context.core->connection (), false, call);
  }

  Context context;
  bool asks_server; ///< false for what the library does by itself: it needs no link and has no limit
  Call<T> call;
};

/** In place of a call with a bad argument. */
template <class T>
auto bad_call (const char *reason) {
  return [reason] () -> result<T> { return Failure{Kind::invalid, reason}; };
}

/**
 * Calls `look` again and again, with pauses of 1 ms, until it returns a result, the limit passes, the
 * operation is cancelled or the server is closed.
 * @param look returns an optional result. It must return soon, because nothing else is checked meanwhile.
 */
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

/** The form in which operations return plain values and throw their failures. */
struct throwing {
  template <class T>
  using of = T;
  template <class T, class F>
  static T deliver (const detail::Context &, F operation) {
    return operation ().value ();
  }
};

/** The form in which operations return result<T>, also for a failure. */
struct returning {
  template <class T>
  using of = result<T>;
  template <class T, class F>
  static result<T> deliver (const detail::Context &, F operation) {
    return operation ();
  }
};

/** The form in which operations return a future of result<T> at once. */
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
  /** A condition that the caller has passed may throw. An exception that leaves the thread would end the
   * process. */
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
 * The common base of all groups of operations. A group is a small value that can be copied. It holds its
 * target, such as a channel or a clip, its time limit, and the form of its results. It does not keep its
 * server open: once the Server object is destroyed, every operation fails with Kind::invalid.
 * @tparam Group the group, as a template of its form
 * @tparam Form throwing, returning or futures
 * @tparam Data the target and the Context
 */
template <template <class> class Group, class Form, class Data>
class Operations {
public:
  /** What an operation with a value of T returns in this form. */
  template <class T>
  using of = typename Form::template of<T>;

  explicit Operations (Data data) : data_ (std::move (data)) {}
  // Only copies, no moves: a group that was moved from stays usable.
  Operations (const Operations &) = default;
  Operations &operator= (const Operations &) = default;

  /** The same operations, which return result<T> instead of throwing failures. */
  Group<returning> nothrow () const { return Group<returning> (data_); }
  /** The same operations, which throw their failures. */
  Group<throwing> or_throw () const { return Group<throwing> (data_); }
  /** The same operations, which return a future of result<T> at once. The destructor of the future does not
   * wait. Each operation occupies a helper thread until it ends, and another one when it has a limit. */
  Group<futures> async () const { return Group<futures> (data_); }
  /** The same operations with another limit. With no_limit they wait for ever. */
  Group<Form> within (Limit limit) const {
    Data data = data_;
    data.context.own_limit = limit;
    return Group<Form> (std::move (data));
  }
  /** The same operations, whose waits another thread can end with `cancel`. */
  Group<Form> cancelled_by (const Cancel &cancel) const {
    Data data = data_;
    data.context.cancel_state = cancel.state ();
    return Group<Form> (std::move (data));
  }

protected:
  const detail::Context &context () const { return data_.context; }

  /**
   * Calls a function that asks the server.
   * @param operation takes the connection, the variable for the value (unless T is void), and the arguments
   *   in the form that C functions take. It returns a result code. It may still run when the caller has gone
   *   on.
   */
  template <class T, class F, class... Arguments>
  of<T> ask (F operation, const Arguments &...arguments) const {
    return make_checked<T> (true, operation, detail::checked (arguments)...);
  }
  /** The same for what the library does by itself. It needs no link, does not wait, and has no limit. */
  template <class T, class F, class... Arguments>
  of<T> ask_library (F operation, const Arguments &...arguments) const {
    return make_checked<T> (false, operation, detail::checked (arguments)...);
  }
  /** Sends a command that returns no value. @param function a C function */
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
