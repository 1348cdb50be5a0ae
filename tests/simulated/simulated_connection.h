#pragma once

#include "engine/commands.h"
#include "engine/notes.h"
#include "engine/quill3_client.h"
#include "support/simulator_process.h"
#include "support/wait.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

/// A connection that writes each report down as one line: its name and its values.
class Listener : public QUILL3::Client {
public:
  explicit Listener (uint32_t address) : Client (address) { start_thread (0); }
  ~Listener () override { stop_and_join (); }
  using Client::stop_and_join;

  Notes reports;

protected:
#define REPORT(name, ...)                                                                                    \
  void on_##name (LIST_OF (PARAMETER, __VA_ARGS__)) override {                                               \
    note (#name, LIST_OF (GIVEN, __VA_ARGS__));                                                              \
  }
#include "engine/bodies.inc"

private:
  template <class... Values>
  void note (std::string line, const Values &...values) {
    ((line += " " + show::text (values)), ...);
    reports.add (line);
  }
};

/// The protocol engine, connected to a simulator that refuses documents which differ by a byte from what the
/// library writes. The test fails at the end if the engine could not read something that the simulator sent.
class SimulatedConnection {
public:
  explicit SimulatedConnection (std::vector<std::string> arguments = {})
      : simulator (strict (std::move (arguments))) {
    EXPECT_TRUE (support::wait_until ([&] { return listener.is_connected (); }));
  }
  ~SimulatedConnection () {
    listener.stop_and_join ();
    EXPECT_EQ (listener.first_error_text ().to_std_string (), "");
  }
  SimulatedConnection (const SimulatedConnection &) = delete;
  SimulatedConnection &operator= (const SimulatedConnection &) = delete;

  /// Sends a command by its own wrapper with a callback for each answer that it can get, and waits until it
  /// has ended. @return a line for each answer: its name and values.
#define HEAR(reply) answers_.make<QUILL3::callback::reply> (#reply)
#define COMMAND(name, answers, ...)                                                                          \
  std::vector<std::string> ask (const QUILL3::command::name &arguments) {                                    \
    listener.name (arguments, LIST_OF (HEAR, NAMES answers), answers_.error ());                             \
    return ended (#name);                                                                                    \
  }
#include "engine/commands.inc"
#undef HEAR

private:
  static std::vector<std::string> strict (std::vector<std::string> arguments) {
    arguments.insert (arguments.end (), {"--strict", "--quiet"});
    return arguments;
  }

  std::vector<std::string> ended (const char *name) {
    EXPECT_TRUE (support::wait_until ([&] { return listener.outstanding_count () == 0; })) << name;
    return answers_.take_lines ();
  }

  Notes answers_;

public:
  support::SimulatorProcess simulator;
  Listener listener{simulator.address ()};
};
