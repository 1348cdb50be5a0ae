// A program loads the library, uses it and unloads it with connections open: the library stays where its
// threads are, and can be loaded again. It registers nothing that would run at the end of the process, when
// those threads still run. A program of its own, because others have the library linked in.
#include "orva.h"
#include "platform/sanitizers.h"
#include "support/fake_server.h"

#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>
#include <unistd.h>

#include <string>

namespace {

using support::FakeServer;

// The program lies in a folder beside the library's.
std::string library_path () {
  char path[4096];
  const ssize_t length = readlink ("/proc/self/exe", path, sizeof path);
  const std::string self (path, length > 0 ? static_cast<size_t> (length) : 0);
  const std::string folder = self.substr (0, self.rfind ('/'));
  return folder.substr (0, folder.rfind ('/')) + "/lib/libOrvaAPI64.so.1";
}

/// The library as long as the program wants it, and its functions.
class Library {
public:
  Library () : handle_ (dlopen (library_path ().c_str (), RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE (handle_, nullptr) << dlerror ();
  }
  ~Library () { EXPECT_EQ (dlclose (handle_), 0); }
  Library (const Library &) = delete;
  Library &operator= (const Library &) = delete;

  void *handle () const { return handle_; }
  template <class Function>
  Function *function (const char *name) const {
    void *found = dlsym (handle_, name);
    EXPECT_NE (found, nullptr) << name;
    return reinterpret_cast<Function *> (found);
  }

private:
  void *handle_;
};

#define FROM(library, name) (library).function<decltype (name)> (#name)

TEST (Unloading, LeavesOpenConnectionsAtWork) {
  FakeServer server, silent;
  server.answer_any ("<ok />");
  silent.silent (true);
  FakeServer absent (FakeServer::Start::refusing);
  uint32_t connection = 0;
  {
    const Library library;
    connection = FROM (library, orva_connect) (server.address ());
    FROM (library, orva_wait_until_connected) (connection);
    EXPECT_EQ (FROM (library, orva_cmd_stop1) (connection, 0), ORVA_OK);
    const uint32_t unanswered = FROM (library, orva_connect) (silent.address ());
    FROM (library, orva_wait_until_connected) (unanswered);
    FROM (library, orva_synchronous) (unanswered, 1);
    EXPECT_EQ (FROM (library, orva_cmd_stop1) (unanswered, 0), ORVA_OK);
    FROM (library, orva_connect) (absent.address ());
  }
  // Its threads go on: each of these runs code of the library.
  ASSERT_TRUE (silent.wait_for_commands (1));
  silent.send (support::reply_to (silent.command (1), "<ok />"));
  silent.drop ();
  EXPECT_TRUE (silent.wait_for_connections (2));
  server.report ("<clip_created><ClipID>NEWS</ClipID></clip_created>");
  server.drop ();
  EXPECT_TRUE (server.wait_for_connections (2));
  absent.listen ();
  EXPECT_TRUE (absent.wait_for_connections (1));

  const Library again;
  EXPECT_TRUE (support::wait_until ([&] { return FROM (again, orva_cmd_stop1) (connection, 0) == ORVA_OK; }));
  FROM (again, orva_close) (connection);
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (Unloading, HappensAgainAndAgainWithoutGrowth) {
  FakeServer server;
  server.answer_any ("<ok />");
  for (int round = 0; round != 5; ++round) {
    const Library library;
    const uint32_t connection = FROM (library, orva_connect) (server.address ());
    FROM (library, orva_wait_until_connected) (connection);
    EXPECT_EQ (FROM (library, orva_cmd_stop1) (connection, 0), ORVA_OK);
    FROM (library, orva_close) (connection);
  }
  EXPECT_TRUE (server.wait_until_left ());
}

// Of the loaded library's dynamic section.
ElfW (Xword) value_of (const link_map &map, ElfW (Sxword) tag) {
  for (const ElfW (Dyn) *entry = map.l_ld; entry->d_tag != DT_NULL; ++entry)
    if (entry->d_tag == tag)
      return entry->d_un.d_val;
  return 0;
}

// With a destructor for a static object, a thread's object or a module the library would have to name one of
// these, or have a second entry beside the compiler's own.
TEST (Unloading, RunsNoDestructors) {
  if (platform::under_address_sanitizer || platform::under_thread_sanitizer)
    GTEST_SKIP () << "a sanitizer has ends of its own";
  const Library library;
  link_map *map = nullptr;
  ASSERT_EQ (dlinfo (library.handle (), RTLD_DI_LINKMAP, &map), 0);
  const std::string names (reinterpret_cast<const char *> (value_of (*map, DT_STRTAB)),
                           value_of (*map, DT_STRSZ));
  ASSERT_NE (names.find (std::string ("\0orva_connect\0", 14)), std::string::npos);
  for (const char *name : {"__cxa_atexit", "__cxa_thread_atexit", "__cxa_thread_atexit_impl", "atexit",
                           "on_exit", "__cxa_at_quick_exit", "pthread_key_create"})
    EXPECT_EQ (names.find ('\0' + std::string (name) + '\0'), std::string::npos) << name;
  EXPECT_LE (value_of (*map, DT_FINI_ARRAYSZ), sizeof (void *));
}

} // namespace
