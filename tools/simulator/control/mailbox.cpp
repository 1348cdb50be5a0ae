#include "control/mailbox.h"

#include <cstdint>
#include <stdexcept>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace sim {

Mailbox::Mailbox (asio::io_context &context)
    : event_ (context), event_descriptor_ (::eventfd (0, EFD_CLOEXEC)) {
  if (event_descriptor_ < 0)
    throw std::runtime_error ("there is no event descriptor left");
  event_.assign (event_descriptor_);
  await ();
}

Mailbox::~Mailbox () {
  close ();
}

void Mailbox::post (std::function<void ()> action) {
  const std::lock_guard lock (mutex_);
  if (closed_)
    return;
  posted_.push_back (std::move (action));
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write (event_descriptor_, &one, sizeof one);
}

void Mailbox::close () {
  std::deque<std::function<void ()>> dropped;
  const std::lock_guard lock (mutex_);
  closed_ = true;
  dropped.swap (posted_);
}

void Mailbox::await () {
  event_.async_wait (asio::posix::stream_descriptor::wait_read, [this] (const asio::error_code &error) {
    if (error)
      return;
    run_all ();
    await ();
  });
}

void Mailbox::run_all () {
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t size = ::read (event_descriptor_, &count, sizeof count);
  std::deque<std::function<void ()>> actions;
  {
    const std::lock_guard lock (mutex_);
    actions.swap (posted_);
  }
  for (const std::function<void ()> &action : actions)
    action ();
}

} // namespace sim
