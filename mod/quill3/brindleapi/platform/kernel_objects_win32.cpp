#include "platform/kernel_objects.h"

#include <windows.h>

namespace {

HANDLE of (platform::SemaphoreHandle handle) {
  return reinterpret_cast<HANDLE> (handle);
}
HANDLE of (platform::MutexHandle handle) {
  return reinterpret_cast<HANDLE> (handle);
}

} // namespace

platform::SemaphoreHandle platform::semaphore_create (unsigned initial, unsigned maximum) noexcept {
  return reinterpret_cast<SemaphoreHandle> (
      CreateSemaphoreW (nullptr, static_cast<LONG> (initial), static_cast<LONG> (maximum), nullptr));
}

void platform::semaphore_close (SemaphoreHandle handle) noexcept {
  if (handle != nullptr)
    CloseHandle (of (handle));
}

// The wait is alertable. Completion routines of the waiting thread run here, and after each the wait starts
// again.
platform::Wait platform::semaphore_wait (SemaphoreHandle handle, unsigned milliseconds) noexcept {
  DWORD result = 0;
  do
    result = WaitForSingleObjectEx (of (handle), milliseconds, TRUE);
  while (result == WAIT_IO_COMPLETION);
  if (result == WAIT_OBJECT_0)
    return Wait::signalled;
  return result == WAIT_TIMEOUT ? Wait::timed_out : Wait::failed;
}

platform::Post platform::semaphore_post (SemaphoreHandle handle, unsigned count) noexcept {
  if (count == 0)
    return Post::failed;
  if (ReleaseSemaphore (of (handle), static_cast<LONG> (count), nullptr))
    return Post::done;
  return GetLastError () == ERROR_TOO_MANY_POSTS ? Post::full : Post::failed;
}

void platform::forget_last_error () noexcept {
  SetLastError (0);
}

platform::MutexHandle platform::mutex_create () noexcept {
  return reinterpret_cast<MutexHandle> (CreateMutexW (nullptr, FALSE, nullptr));
}

void platform::mutex_close (MutexHandle handle) noexcept {
  if (handle != nullptr)
    CloseHandle (of (handle));
}

// A mutex whose owner has ended is unlocked. This call returns false, and the next one must not wait for it.
bool platform::mutex_lock (MutexHandle handle) noexcept {
  if (handle == nullptr)
    return false;
  DWORD result = 0;
  do
    result = WaitForSingleObjectEx (of (handle), INFINITE, FALSE);
  while (result == WAIT_IO_COMPLETION);
  if (result == WAIT_ABANDONED)
    ReleaseMutex (of (handle));
  return result == WAIT_OBJECT_0;
}

bool platform::mutex_unlock (MutexHandle handle) noexcept {
  return handle != nullptr && ReleaseMutex (of (handle)) != FALSE;
}
