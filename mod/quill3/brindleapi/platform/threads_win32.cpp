#include "platform/threads.h"

#include <new>
#include <process.h>
#include <windows.h>

namespace {

constexpr unsigned largest_stack = 8u << 20;

struct Start {
  void (*run) (void *);
  void *argument;
};

unsigned __stdcall thread_main (void *given) {
  Start start = *static_cast<Start *> (given);
  delete static_cast<Start *> (given);
  start.run (start.argument);
  return 0;
}

// The process crashes when code is unloaded while a thread still runs it.
bool pin_this_module () {
  HMODULE module = nullptr;
  auto *inside = reinterpret_cast<LPCWSTR> (reinterpret_cast<uintptr_t> (&thread_main));
  return GetModuleHandleExW (GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, inside,
                             &module) != FALSE;
}

} // namespace

platform::ThreadHandle::~ThreadHandle () {
  if (handle_ != nullptr)
    CloseHandle (handle_);
}

bool platform::ThreadHandle::was_ended () const noexcept {
  return handle_ != nullptr && WaitForSingleObject (handle_, 0) == WAIT_OBJECT_0;
}

// Not _beginthread, because its handle becomes invalid when the thread ends, which may be before it is used.
bool platform::thread_start (void (*run) (void *), void *argument, unsigned stack_bytes,
                             ThreadHandle *started) noexcept {
  [[maybe_unused]] static const bool pinned = pin_this_module ();
  auto *start = new (std::nothrow) Start{run, argument};
  if (start == nullptr)
    return false;
  uintptr_t handle = 0;
  while ((handle = _beginthreadex (nullptr, stack_bytes, thread_main, start, 0, nullptr)) == 0) {
    if (stack_bytes >= largest_stack) {
      delete start;
      return false;
    }
    stack_bytes *= 2;
  }
  ThreadHandle thread (reinterpret_cast<void *> (handle));
  if (started != nullptr)
    *started = std::move (thread);
  return true;
}

// Windows has no signals that interrupt a thread.
void platform::call_with_signals_blocked (void (*call) (void *), void *argument) {
  call (argument);
}

void platform::thread_set_priority (int priority) noexcept {
  SetThreadPriority (GetCurrentThread (), priority);
}

uint32_t platform::thread_number () noexcept {
  return GetCurrentThreadId ();
}

void platform::sleep_milliseconds (unsigned milliseconds) noexcept {
  Sleep (milliseconds);
}

void platform::thread_yield () noexcept {
  SwitchToThread ();
}
