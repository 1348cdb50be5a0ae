#include "base/bsem.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

// Posting a set one fails inside, and nobody shall see that.
TEST (BsemOnWindows, LeavesNoErrorOfASecondPost) {
  bsem set (true);
  SetLastError (ERROR_ACCESS_DENIED);
  set.post ();
  EXPECT_EQ (GetLastError (), DWORD{ERROR_SUCCESS});
}

} // namespace
