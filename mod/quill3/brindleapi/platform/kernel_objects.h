#pragma once

/// Semaphores and recursive mutexes of the operating system, behind opaque handles. The classes `csem`,
/// `bsem` and `AMutex` of the base library are what the rest of the code uses.
namespace platform {

/// A wait that takes this many milliseconds has no end.
inline constexpr unsigned infinite = 0xFFFFFFFFu;

/// Handle of a counting semaphore with a maximum.
using SemaphoreHandle = struct SemaphoreTag *;
/// Handle of a mutex that its owner may take again.
using MutexHandle = struct MutexTag *;

/// How a wait ended.
enum class Wait { signalled, timed_out, failed };
/// How a post ended; `full`: the count would have passed the maximum and nothing was added.
enum class Post { done, full, failed };

/// Makes a semaphore. @param initial count at first, at most @p maximum. @param maximum 1 to 0x7FFFFFFF.
/// @return null when the arguments are out of range or the system has nothing to give.
SemaphoreHandle semaphore_create (unsigned initial, unsigned maximum) noexcept;
/// Frees a semaphore on which nobody waits. Null is ignored.
void semaphore_close (SemaphoreHandle semaphore) noexcept;
/// Takes one off the count, waiting for it at most @p milliseconds of the steady clock (`infinite`: for
/// ever). An interruption begins the wait anew with the whole time. A null handle fails. Any thread.
Wait semaphore_wait (SemaphoreHandle semaphore, unsigned milliseconds) noexcept;
/// Adds @p count (at least 1) in one step, or nothing. A null handle fails. Any thread.
Post semaphore_post (SemaphoreHandle semaphore, unsigned count) noexcept;
/// Clears what the system has noted for the calling thread about its last failed call, where it does so.
void forget_last_error () noexcept;

/// Makes a recursive mutex. @return null when the system has nothing to give.
MutexHandle mutex_create () noexcept;
/// Frees a mutex that nobody holds. Null is ignored.
void mutex_close (MutexHandle mutex) noexcept;
/// Waits without limit. @return true when the calling thread holds the mutex now; false for a null handle,
/// and once for a mutex whose owner ended without giving it back: nobody holds it then.
bool mutex_lock (MutexHandle mutex) noexcept;
/// Gives back one level. @return false for a null handle or a thread that does not hold the mutex.
bool mutex_unlock (MutexHandle mutex) noexcept;

} // namespace platform
