// A thread that has had no result. It needs a process in which no thread with a result has ended, since a new
// thread inherits the text of an old one that had its number.
#include "orva.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

TEST (LastErrorOfANewThread, IsTheEmptyText) {
  EXPECT_EQ (orva_cmd_stop1 (77, 0), ORVA_INVALID_HANDLE);
  orva_char units[4] = {'#', '#', '#', '#'};
  std::thread ([&] { orva_get_last_error (OrvaStringBuffer{units, 4}); }).join ();
  EXPECT_EQ (units[0], orva_char (0));
  EXPECT_EQ (units[1], orva_char ('#'));
  orva_get_last_error (OrvaStringBuffer{units, 4});
  EXPECT_EQ (units[0], orva_char ('I'));
}

} // namespace
