#pragma once

// Shared by the tests of orva.hpp that use the scripted server.

#include "exports/session.h"
#include "orva.hpp"
#include "support/fake_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <string_view>

inline constexpr std::chrono::milliseconds generous = support::generous;

/// A server object that is connected to a scripted server.
class Connected : public orva::Server {
public:
  explicit Connected (const support::FakeServer &fake, orva::Limit limit = generous)
      : Server (fake.address (), orva::Options{limit}) {
    within (generous).wait_until_connected ();
  }
};

/// The kind of failure that an operation throws. Fails the test when it throws nothing.
template <class Operation>
orva::Kind thrown (Operation operation) {
  try {
    operation ();
  } catch (const orva::error &failed) {
    return failed.kind ();
  }
  ADD_FAILURE () << "nothing was thrown";
  return orva::Kind::internal;
}

namespace orva {

inline void PrintTo (Kind kind, std::ostream *out) {
  static constexpr const char *names[] = {"invalid",   "not_connected", "link_lost",   "refused",
                                          "timed_out", "cancelled",     "unsupported", "internal"};
  *out << names[static_cast<std::size_t> (kind)];
}

} // namespace orva
