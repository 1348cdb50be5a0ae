#include "base/csem.h"

#include "base/kelvane_assert.h"

#include <cstdint>

namespace {

// When a system has no semaphore left it returns a null handle, which is not invalid here. The first wait
// then fails.
bool is_invalid (platform::SemaphoreHandle handle) {
  return reinterpret_cast<uintptr_t> (handle) == UINTPTR_MAX;
}

} // namespace

csem::csem (unsigned initial, unsigned maximum) : sem_ (platform::semaphore_create (initial, maximum)) {
  if (!KELVANE_ASSERT (!is_invalid (sem_)))
    sem_ = nullptr;
}

csem::~csem () {
  platform::semaphore_close (sem_);
}

bool csem::wait (unsigned milliseconds) {
  switch (platform::semaphore_wait (sem_, milliseconds)) {
  case platform::Wait::signalled:
    return true;
  case platform::Wait::timed_out:
    return !KELVANE_ASSERT (milliseconds != INFINITE_TIME) && false;
  case platform::Wait::failed:
    break;
  }
  return kelvane_assert_report (__FILE__, __LINE__, "0");
}

unsigned csem::wait_count (unsigned count) {
  for (unsigned i = 0; i < count; ++i)
    wait (INFINITE_TIME);
  return count;
}

bool csem::post (unsigned count) {
  return platform::semaphore_post (sem_, count) == platform::Post::done;
}
