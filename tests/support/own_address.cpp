#include "support/own_address.h"

#include <gtest/gtest.h>

namespace support {

namespace {

// The upper half of 127.0.0.0/8 can be had. The lower is left to others: 127.0.0.1 is what clients take for
// granted, and programs that know nothing of reservations have numbers of their own there.
uint32_t some_loopback_address () {
  const uint32_t number = net::unlikely_number ();
  const uint32_t a = 128 + number % 127, b = 1 + (number >> 8U) % 254, c = 1 + (number >> 16U) % 254;
  return 0x7F000000U | a << 16U | b << 8U | c;
}

} // namespace

OwnAddress::OwnAddress () {
  for (int attempt = 0; guard_ == net::no_handle && attempt < 1000; ++attempt) {
    value_ = some_loopback_address ();
    guard_ = net::listen_on (value_, guard_port, 1);
  }
  if (guard_ == net::no_handle)
    ADD_FAILURE () << "no loopback address can be reserved";
}

OwnAddress::~OwnAddress () {
  net::close_handle (guard_);
}

std::string address_text (uint32_t address) {
  return std::to_string (address >> 24U) + "." + std::to_string (address >> 16U & 255U) + "." +
         std::to_string (address >> 8U & 255U) + "." + std::to_string (address & 255U);
}

} // namespace support
