#pragma once

/// clang's thread-safety annotations. They name the lock that guards a member, and clang checks it. For other
/// compilers they are empty.
#if defined(__clang__)
#define KELVANE_THREAD_ATTRIBUTE(x) __attribute__ ((x))
#else
#define KELVANE_THREAD_ATTRIBUTE(x)
#endif

#define KELVANE_CAPABILITY(name) KELVANE_THREAD_ATTRIBUTE (capability (name))
#define KELVANE_SCOPED_CAPABILITY KELVANE_THREAD_ATTRIBUTE (scoped_lockable)
#define KELVANE_GUARDED_BY(lock) KELVANE_THREAD_ATTRIBUTE (guarded_by (lock))
#define KELVANE_REQUIRES(...) KELVANE_THREAD_ATTRIBUTE (requires_capability (__VA_ARGS__))
#define KELVANE_EXCLUDES(...) KELVANE_THREAD_ATTRIBUTE (locks_excluded (__VA_ARGS__))
#define KELVANE_ACQUIRE(...) KELVANE_THREAD_ATTRIBUTE (acquire_capability (__VA_ARGS__))
#define KELVANE_RELEASE(...) KELVANE_THREAD_ATTRIBUTE (release_capability (__VA_ARGS__))
#define KELVANE_NO_THREAD_SAFETY_ANALYSIS KELVANE_THREAD_ATTRIBUTE (no_thread_safety_analysis)
