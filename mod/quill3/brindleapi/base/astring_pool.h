/// The memory of short texts, kept for the next ones.
#pragma once

#include <cstddef>

/// Keeps up to 1024 freed blocks of one size for the whole process. So a text that lives shortly costs one
/// atomic exchange instead of the heap. Nothing is destroyed at the end of the process. Any thread; no call
/// waits. Builds with the address sanitizer keep no block, so that they see a use after the free.
namespace astring_pool {

/// Memory for an object. Throws std::bad_alloc. @param size the same in all calls
void *allocate (size_t size);
/// Takes memory back that `allocate` has returned.
void release (void *block) noexcept;

/// Frees all blocks that are kept, for tests that count memory. @return how many
size_t free_all () noexcept;

} // namespace astring_pool
