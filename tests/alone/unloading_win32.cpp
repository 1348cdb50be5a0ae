// A program loads the library, uses it and unloads it with connections open: the library stays where its
// threads are, and can be loaded again. A program of its own, because others have the library linked in.
#include "orva.h"
#include "support/fake_server.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

using support::FakeServer;

/// The library, which lies beside the program, as long as the program wants it.
class Library {
public:
  Library () : handle_ (LoadLibraryW (L"OrvaAPI64.dll")) { EXPECT_NE (handle_, nullptr) << GetLastError (); }
  ~Library () { EXPECT_NE (FreeLibrary (handle_), 0); }
  Library (const Library &) = delete;
  Library &operator= (const Library &) = delete;

  template <class Function>
  Function *function (const char *name) const {
    auto *found = reinterpret_cast<void *> (GetProcAddress (handle_, name));
    EXPECT_NE (found, nullptr) << name;
    return reinterpret_cast<Function *> (found);
  }

private:
  HMODULE handle_;
};

#define FROM(library, name) (library).function<decltype (name)> (#name)

TEST (Unloading, LeavesOpenConnectionsAtWork) {
  FakeServer server;
  server.answer_any ("<ok />");
  uint32_t connection = 0;
  {
    const Library library;
    connection = FROM (library, orva_connect) (server.address ());
    FROM (library, orva_wait_until_connected) (connection);
    EXPECT_EQ (FROM (library, orva_cmd_stop1) (connection, 0), ORVA_OK);
  }
  ASSERT_NE (GetModuleHandleW (L"OrvaAPI64.dll"), nullptr);
  // Its thread goes on: this runs code of the library.
  server.report ("<clip_created><ClipID>NEWS</ClipID></clip_created>");
  server.drop ();
  EXPECT_TRUE (server.wait_for_connections (2));

  const Library again;
  EXPECT_TRUE (support::wait_until ([&] { return FROM (again, orva_cmd_stop1) (connection, 0) == ORVA_OK; }));
  FROM (again, orva_close) (connection);
  EXPECT_TRUE (server.wait_until_left ());
}

} // namespace
