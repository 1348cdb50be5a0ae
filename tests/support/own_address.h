#pragma once

#include "support/socket.h"

#include <cstdint>
#include <string>

namespace support {

/// Listening there says to other tests that the address is taken. The server's own port cannot say it: it is
/// free while a server is away.
inline constexpr uint16_t guard_port = 8914;

/// A loopback address that no other test has while this object lives, whichever process it runs in: a server
/// of the test can leave its port and come back, and nobody else takes it meanwhile.
class OwnAddress {
public:
  OwnAddress ();
  ~OwnAddress ();
  OwnAddress (const OwnAddress &) = delete;
  OwnAddress &operator= (const OwnAddress &) = delete;

  /// In host byte order.
  uint32_t value () const { return value_; }

private:
  uint32_t value_ = 0;
  net::Handle guard_ = net::no_handle;
};

/// Such as "127.3.4.5".
std::string address_text (uint32_t address);

} // namespace support
