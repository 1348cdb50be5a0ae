/**
 * @file orva/limits.hpp
 * How long an operation may take, and how another thread ends the wait for it.
 */
#ifndef ORVA_LIMITS_HPP
#define ORVA_LIMITS_HPP

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace orva {

/**
 * How long to wait. Durations of std::chrono that count whole nanoseconds, milliseconds, seconds and so on
 * convert to it. A limit of more than 50 years is the same as no_limit. A limit of 0 or less has passed
 * before the wait begins.
 */
using Limit = std::chrono::nanoseconds;

/** Waits for ever. */
inline constexpr Limit no_limit = Limit::max ();

namespace detail {

/** The moment at which a limit passes. */
class Deadline {
public:
  using Clock = std::chrono::steady_clock;

  explicit Deadline (Limit limit)
      : never_ (limit > std::chrono::hours (24 * 365 * 50)),
        at_ (Clock::now () + (never_ ? Limit (0) : limit)) {}

  bool never () const { return never_; }
  bool passed () const { return !never_ && Clock::now () >= at_; }
  /** Only when never() is false. */
  Clock::time_point at () const { return at_; }
  Limit left () const { return never_ ? no_limit : std::max (Limit (0), Limit (at_ - Clock::now ())); }

private:
  bool never_;
  Clock::time_point at_;
};

/** A caller that waits for an operation on another thread. The lock guards all members. */
struct Waiter {
  enum class State { waiting, started, done, given_up };

  std::mutex lock;
  std::condition_variable changed;
  State state = State::waiting;
  bool cancelled = false;
};

/** The state that the copies of a Cancel share. */
class CancelState {
public:
  void cancel () {
    std::vector<std::shared_ptr<Waiter>> waiters;
    {
      const std::lock_guard<std::mutex> hold (lock_);
      cancelled_ = true;
      waiters.swap (waiters_);
    }
    for (const auto &waiter : waiters) {
      const std::lock_guard<std::mutex> hold (waiter->lock);
      waiter->cancelled = true;
      waiter->changed.notify_all ();
    }
  }
  bool cancelled () const {
    const std::lock_guard<std::mutex> hold (lock_);
    return cancelled_;
  }
  /** Adds a waiter. Returns false, and does not add it, when cancel() has been called before. */
  bool enter (const std::shared_ptr<Waiter> &waiter) {
    const std::lock_guard<std::mutex> hold (lock_);
    if (!cancelled_)
      waiters_.push_back (waiter);
    return !cancelled_;
  }
  void leave (const std::shared_ptr<Waiter> &waiter) {
    const std::lock_guard<std::mutex> hold (lock_);
    waiters_.erase (std::remove (waiters_.begin (), waiters_.end (), waiter), waiters_.end ());
  }

private:
  mutable std::mutex lock_;
  bool cancelled_ = false;
  std::vector<std::shared_ptr<Waiter>> waiters_;
};

} // namespace detail

/**
 * Ends waits from another thread. Copies share one state. Once cancelled, it stays cancelled. Any number of
 * operations and threads may use it at the same time.
 *
 *     orva::Cancel stop;
 *     std::thread worker ([&] { server.cancelled_by (stop).channel (orva::A).play (); });
 *     stop.cancel ();      // play() throws orva::cancelled, unless it has returned before
 */
class Cancel {
public:
  Cancel () = default;
  // Only copies, no moves: an object that was moved from stays usable.
  Cancel (const Cancel &) = default;
  Cancel &operator= (const Cancel &) = default;

  /** Makes operations with this object fail with Kind::cancelled: those that wait now, and all later ones. */
  void cancel () const { state_->cancel (); }
  bool cancelled () const { return state_->cancelled (); }

  const std::shared_ptr<detail::CancelState> &state () const { return state_; }

private:
  std::shared_ptr<detail::CancelState> state_ = std::make_shared<detail::CancelState> ();
};

} // namespace orva

#endif
