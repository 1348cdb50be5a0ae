#include "base/bsem.h"

#include "base/kelvane_assert.h"

void bsem::post () {
  bool ok = platform::semaphore_post (handle (), 1) != platform::Post::failed;
  (void)KELVANE_ASSERT (ok);
}
