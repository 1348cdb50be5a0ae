#include "platform/threads.h"

#include "platform/sanitizers.h"

#include <errno.h>
#include <new>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

namespace {

constexpr size_t sanitizer_stack = size_t{1} << 20;
constexpr size_t largest_stack = size_t{8} << 20;

/// All signals are blocked in the calling thread while it lives.
class SignalBlock {
public:
  SignalBlock () noexcept {
    sigset_t all;
    sigfillset (&all);
    pthread_sigmask (SIG_SETMASK, &all, &before_);
  }
  SignalBlock (const SignalBlock &) = delete;
  SignalBlock &operator= (const SignalBlock &) = delete;
  ~SignalBlock () { pthread_sigmask (SIG_SETMASK, &before_, nullptr); }

private:
  sigset_t before_;
};

struct Start {
  void (*run) (void *);
  void *argument;
};

void *thread_main (void *given) {
  Start start = *static_cast<Start *> (given);
  delete static_cast<Start *> (given);
  start.run (start.argument);
  return nullptr;
}

bool create_detached (size_t stack_bytes, Start *start) {
  pthread_attr_t attributes;
  if (pthread_attr_init (&attributes) != 0)
    return false;
  pthread_t thread;
  bool ok = pthread_attr_setdetachstate (&attributes, PTHREAD_CREATE_DETACHED) == 0 &&
            pthread_attr_setstacksize (&attributes, stack_bytes) == 0 &&
            pthread_create (&thread, &attributes, thread_main, start) == 0;
  pthread_attr_destroy (&attributes);
  return ok;
}

// The system refuses a small stack when the host has much thread-local data.
bool create_with_stack_at_least (size_t stack_bytes, Start *start) {
  while (!create_detached (stack_bytes, start)) {
    if (stack_bytes >= largest_stack)
      return false;
    stack_bytes *= 2;
  }
  return true;
}

} // namespace

// The system ends all threads of a process together, so none is left to wait for another.
platform::ThreadHandle::~ThreadHandle () = default;

bool platform::ThreadHandle::was_ended () const noexcept {
  return false;
}

bool platform::thread_start (void (*run) (void *), void *argument, unsigned stack_bytes,
                             ThreadHandle *) noexcept {
  auto *start = new (std::nothrow) Start{run, argument};
  if (start == nullptr)
    return false;
  size_t stack = stack_bytes;
  if ((under_address_sanitizer || under_thread_sanitizer) && stack < sanitizer_stack)
    stack = sanitizer_stack;
  // A thread inherits the mask of the thread that starts it. So not even its first instruction can be
  // interrupted.
  SignalBlock block;
  if (create_with_stack_at_least (stack, start))
    return true;
  delete start;
  return false;
}

void platform::call_with_signals_blocked (void (*call) (void *), void *argument) {
  SignalBlock block;
  call (argument);
}

// Linux has a nice value for each thread. A thread that may not lower its own keeps it.
void platform::thread_set_priority (int priority) noexcept {
  id_t self = static_cast<id_t> (gettid ());
  errno = 0;
  int nice_value = getpriority (PRIO_PROCESS, self);
  if (errno == 0)
    (void)setpriority (PRIO_PROCESS, self, nice_value - priority);
}

uint32_t platform::thread_number () noexcept {
  return static_cast<uint32_t> (gettid ());
}

void platform::sleep_milliseconds (unsigned milliseconds) noexcept {
  timespec rest{static_cast<time_t> (milliseconds / 1000),
                static_cast<long> (milliseconds % 1000) * 1000000L};
  while (clock_nanosleep (CLOCK_MONOTONIC, 0, &rest, &rest) == EINTR) {
  }
}

void platform::thread_yield () noexcept {
  sched_yield ();
}
