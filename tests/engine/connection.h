#pragma once

#include "base/amethod.h"
#include "engine/test_client.h"
#include "support/socket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

/// A client of a scripted server, and what the tests of it have in common.
namespace connection {

using namespace QUILL3;
using namespace std::chrono_literals;
using support::FakeServer;
using support::wait_until;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

inline const std::string failing = "Failing all outstanding commands";
inline const std::string failed = "error " + failing + " 0";

inline std::string created (const std::string &clip) {
  return "<clip_created><ClipID>" + clip + "</ClipID></clip_created>";
}

template <class Action>
std::chrono::milliseconds time_of (Action action) {
  auto start = std::chrono::steady_clock::now ();
  action ();
  return std::chrono::duration_cast<std::chrono::milliseconds> (std::chrono::steady_clock::now () - start);
}

class Connection : public ::testing::Test {
protected:
  FakeServer server;
  Notes notes;
  TestClient client{notes, server.address ()};

  void start () {
    client.start_thread (-1);
    ASSERT_TRUE (client.wait_noted ("connected"));
    ASSERT_TRUE (server.wait_for_connections (1));
  }
  // Ends the wait of the connection's thread for something to read, by something that no handler is called
  // for.
  void wake () { server.send ("<report />\r\n<report></report>"); }
  AString stop (const std::string &name = "") {
    return client.stop ({.Channel = 0}, notes.ok (name + "ok"), notes.error (name + "error"));
  }
  // What was noted first; on a busy machine the next link may have come since.
  std::vector<std::string> first_lines (size_t count) const {
    std::vector<std::string> lines = notes.lines ();
    lines.resize (std::min (lines.size (), count));
    return lines;
  }
  // Waits until this connection has gone and the next has come.
  void wait_for_link (size_t number) {
    ASSERT_TRUE (client.wait_noted ("connected", number));
    ASSERT_TRUE (server.wait_for_connections (number));
  }
};

} // namespace connection
