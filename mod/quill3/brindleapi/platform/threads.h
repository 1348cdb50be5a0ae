#pragma once

#include <cstdint>
#include <utility>

namespace platform {

/// The stack of a connection thread, in bytes.
inline constexpr unsigned small_stack = 65536;

/// A thread that was started. It shows whether the system has ended the thread: at the end of a process,
/// Windows ends all threads but one, wherever they are, and that one must not wait for the others.
class ThreadHandle {
public:
  ThreadHandle () noexcept = default;
  explicit ThreadHandle (void *handle) noexcept : handle_ (handle) {}
  ThreadHandle (const ThreadHandle &) = delete;
  ThreadHandle &operator= (ThreadHandle &&other) noexcept {
    std::swap (handle_, other.handle_);
    return *this;
  }
  /// The thread continues.
  ~ThreadHandle ();

  /// True when the thread has certainly ended. Only Windows knows. Elsewhere, and without a thread, it is
  /// always false.
  bool was_ended () const noexcept;

private:
  void *handle_ = nullptr;
};

/// Starts a detached thread that calls @p run with @p argument; @p run does not throw. All signals are
/// blocked in the new thread from its first instruction on. Where the system refuses a stack of @p
/// stack_bytes, or a sanitizer needs more, the thread gets a larger one. On Windows the first call pins the
/// module that holds this code in the process.
/// @param started receives the thread on Windows; may be null. It is written after the thread may have begun
///   to run, so the thread itself must not look at it.
/// @return false when the system has no thread left. Any thread may call.
bool thread_start (void (*run) (void *argument), void *argument, unsigned stack_bytes = small_stack,
                   ThreadHandle *started = nullptr) noexcept;

/// Calls @p call with @p argument while all signals are blocked in the calling thread. A thread that is
/// started meanwhile inherits that. Exceptions of @p call are passed on.
void call_with_signals_blocked (void (*call) (void *argument), void *argument);

/// Sets the priority of the calling thread relative to normal, -1 being just below normal, +1 just above. A
/// refusal by the system is ignored.
void thread_set_priority (int priority) noexcept;

/// The system's number of the calling thread. Not given to another thread while this one lives.
uint32_t thread_number () noexcept;

/// Sleeps for at least @p milliseconds of the steady clock. Signals do not shorten that.
void sleep_milliseconds (unsigned milliseconds) noexcept;

/// Offers the processor to other threads.
void thread_yield () noexcept;

} // namespace platform
