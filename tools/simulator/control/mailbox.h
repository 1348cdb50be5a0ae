#pragma once

#include <asio.hpp>
#include <chrono>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>

namespace sim {

/// Passes functions from other threads to the event loop, which calls them in order.
class Mailbox {
public:
  explicit Mailbox (asio::io_context &context);
  ~Mailbox ();
  Mailbox (const Mailbox &) = delete;
  Mailbox &operator= (const Mailbox &) = delete;

  /// Adds a function. Can be called from any thread. After `close`, functions are discarded.
  void post (std::function<void ()> action);

  /// Lets the loop call a function and waits for its result. Returns nothing when that takes longer than the
  /// limit, or when the mailbox has been closed. Can be called from any thread except that of the loop. The
  /// action must not throw.
  template <typename Result>
  std::optional<Result> ask (std::function<Result ()> action, std::chrono::milliseconds limit) {
    auto promise = std::make_shared<std::promise<Result>> ();
    std::future<Result> result = promise->get_future ();
    post ([promise = std::move (promise), action = std::move (action)] { promise->set_value (action ()); });
    try {
      if (result.wait_for (limit) == std::future_status::ready)
        return result.get ();
    } catch (const std::future_error &) {
      // The action was discarded.
    }
    return std::nullopt;
  }

  /// Discards all functions that have not been called, and all that are posted later.
  void close ();

private:
  void await ();
  void run_all ();

  asio::posix::stream_descriptor event_; ///< an event descriptor that posting makes readable
  const int event_descriptor_;           ///< the same descriptor, for other threads
  std::mutex mutex_;
  std::deque<std::function<void ()>> posted_; ///< guarded by the mutex
  bool closed_ = false;                       ///< guarded by the mutex
};

} // namespace sim
