#pragma once

/// Semaphores and recursive mutexes of the operating system, behind opaque handles. The rest of the code uses
/// the classes `csem`, `bsem` and `AMutex` of the base library instead.
namespace platform {

/// A wait of this many milliseconds has no limit.
inline constexpr unsigned infinite = 0xFFFFFFFFu;

/// Handle of a counting semaphore with a maximum.
using SemaphoreHandle = struct SemaphoreTag *;
/// Handle of a mutex that its owner may lock again.
using MutexHandle = struct MutexTag *;

/// How a wait ended.
enum class Wait { signalled, timed_out, failed };
/// How a post ended. `full`: the count would have exceeded the maximum, and nothing was added.
enum class Post { done, full, failed };

/// Makes a semaphore. @param initial count at first, at most @p maximum. @param maximum 1 to 0x7FFFFFFF.
/// @return null when the arguments are out of range or the system has no semaphore left.
SemaphoreHandle semaphore_create (unsigned initial, unsigned maximum) noexcept;
/// Frees a semaphore on which nobody waits. Null is ignored.
void semaphore_close (SemaphoreHandle semaphore) noexcept;
/// Lowers the count by one. Waits for that at most @p milliseconds of the steady clock (`infinite`: without
/// limit). After an interruption the wait starts again with the whole time. A null handle fails. Any thread.
Wait semaphore_wait (SemaphoreHandle semaphore, unsigned milliseconds) noexcept;
/// Adds @p count (at least 1) in one step, or nothing. A null handle fails. Any thread.
Post semaphore_post (SemaphoreHandle semaphore, unsigned count) noexcept;
/// Resets the calling thread's last error code, on systems that have one.
void forget_last_error () noexcept;

/// Makes a recursive mutex. @return null when the system has no mutex left.
MutexHandle mutex_create () noexcept;
/// Frees a mutex that nobody holds. Null is ignored.
void mutex_close (MutexHandle mutex) noexcept;
/// Waits without limit. @return true when the calling thread holds the mutex now. It is false for a null
/// handle, and once for a mutex whose owner ended without unlocking it. Nobody holds that mutex then.
bool mutex_lock (MutexHandle mutex) noexcept;
/// Unlocks one level. @return false for a null handle or a thread that does not hold the mutex.
bool mutex_unlock (MutexHandle mutex) noexcept;

} // namespace platform
