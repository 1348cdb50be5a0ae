#pragma once

#ifndef __has_feature
#define __has_feature(x) 0
#endif

namespace platform {

/// Whether this build runs under the address sanitizer, which needs more stack.
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
inline constexpr bool under_address_sanitizer = true;
#else
inline constexpr bool under_address_sanitizer = false;
#endif

/// Whether this build runs under the thread sanitizer, which needs more stack and does not know fences.
#if defined(__SANITIZE_THREAD__) || __has_feature(thread_sanitizer)
inline constexpr bool under_thread_sanitizer = true;
#else
inline constexpr bool under_thread_sanitizer = false;
#endif

} // namespace platform
