// A connection at the end of a process on Windows. The system first ends the connection's thread, wherever it
// is. Then it calls the libraries, and they may still close their connections.
#include "engine/connection.h"

#include <windows.h>

namespace {

using namespace connection;

TEST_F (Connection, DoesNotWaitForAThreadThatTheSystemHasEnded) {
  std::atomic<uint32_t> thread{0};
  client.when_connected = [&] { thread = platform::thread_number (); };
  start ();
  ASSERT_TRUE (wait_until ([&] { return thread != 0; }));
  HANDLE handle = OpenThread (THREAD_TERMINATE | SYNCHRONIZE, FALSE, thread);
  ASSERT_NE (handle, nullptr);
  ASSERT_TRUE (TerminateThread (handle, 0));
  EXPECT_EQ (WaitForSingleObject (handle, 20000), WAIT_OBJECT_0);
  CloseHandle (handle);
  client.stop_and_join ();
}

} // namespace
