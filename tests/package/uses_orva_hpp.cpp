// Needs the headers, the library and no server: what the header for C++ can be told without one.
#include <orva.hpp>

#include <chrono>

int main () {
  using namespace std::chrono_literals;
  const orva::Server server ("127.0.0.1");
  const auto refused = server.nothrow ().channel (8).play ();
  const auto away = server.nothrow ().within (5ms).wait_until_connected ();
  bool thrown = false;
  try {
    server.clip ("a\xFF").erase ();
  } catch (const orva::invalid &) {
    thrown = true;
  }
  return !refused && refused.failure ().kind == orva::Kind::invalid && !away && thrown ? 0 : 1;
}
