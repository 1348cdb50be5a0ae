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
#include <utility>
#include <vector>

namespace orva {

/** How long to wait. Every std::chrono duration with whole numbers fits, up to 292 years. Use no_limit to
 * wait for ever. A limit of 0 or less has passed at once. */
using Limit = std::chrono::nanoseconds;

/** To wait for ever. */
inline constexpr Limit no_limit = Limit::max ();

namespace detail {

/** The moment at which a limit has passed. */
class Deadline {
public:
  using Clock = std::chrono::steady_clock;

  explicit Deadline (Limit limit)
      : never_ (limit > std::chrono::hours (24 * 365 * 50)),
        at_ (Clock::now () + (never_ ? Limit (0) : limit)) {}

  bool never () const { return never_; }
  bool passed () const { return !never_ && Clock::now () >= at_; }
  Clock::time_point at () const { return at_; }
  Limit left () const { return never_ ? no_limit : std::max (Limit (0), Limit (at_ - Clock::now ())); }

private:
  bool never_;
  Clock::time_point at_;
};

/** A caller that waits for an operation on another thread. Its members are guarded by its lock. */
struct Waiter {
  enum class State { waiting, started, done, given_up };

  std::mutex lock;
  std::condition_variable changed;
  State state = State::waiting;
  bool cancelled = false;
};

/** What the copies of a Cancel share. */
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
  /** False, and the waiter is not entered, when it has been cancelled before. */
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
 * Ends waits from another thread. Copies share one state, which stays cancelled. May be used by any number of
 * operations and threads at a time.
 *
 *     orva::Cancel stop;
 *     std::thread worker ([&] { server.cancelled_by (stop).channel (orva::A).play (); });
 *     stop.cancel ();      // play() throws orva::cancelled, unless it has ended before
 */
class Cancel {
public:
  Cancel () = default;
  // To move one is to copy it, so that every object stays usable.
  Cancel (const Cancel &) = default;
  Cancel &operator= (const Cancel &) = default;

  /** Operations with this object fail with Kind::cancelled, those that run now and all later ones. */
  void cancel () const { state_->cancel (); }
  bool cancelled () const { return state_->cancelled (); }

  const std::shared_ptr<detail::CancelState> &state () const { return state_; }

private:
  std::shared_ptr<detail::CancelState> state_ = std::make_shared<detail::CancelState> ();
};

} // namespace orva

#endif
