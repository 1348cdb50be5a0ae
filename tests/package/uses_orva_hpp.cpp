// Uses of the header for C++ that need the library and no server.
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
