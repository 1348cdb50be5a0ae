#include "base/bsem.h"

#include "base/kelvane_assert.h"

void bsem::post () {
  const platform::Post posted = platform::semaphore_post (handle (), 1);
  if (posted == platform::Post::full)
    platform::forget_last_error ();
  const bool ok = posted != platform::Post::failed;
  (void)KELVANE_ASSERT (ok);
}
