#pragma once

#include "orva.h"
#include "support/simulator_process.h"
#include "support/wait.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

/// A file with faults. The destructor removes it.
class FaultsFile {
public:
  explicit FaultsFile (const std::string &rules) : name_ (testing::TempDir () + "faults-XXXXXX") {
    const int file = mkstemp (name_.data ());
    EXPECT_GE (file, 0);
    close (file);
    std::ofstream (name_) << rules;
  }
  ~FaultsFile () { std::remove (name_.c_str ()); }
  FaultsFile (const FaultsFile &) = delete;
  FaultsFile &operator= (const FaultsFile &) = delete;

  const std::string &name () const { return name_; }

private:
  std::string name_;
};

/// A simulator with faults, and a connection to it.
class Faulty {
public:
  explicit Faulty (const std::string &rules) : file_ (rules), simulator ({"--faults", file_.name ()}) {
    number_ = orva_connect (simulator.address ());
    EXPECT_TRUE (orva_wait_until_connected (number_));
  }
  ~Faulty () { orva_close (number_); }
  Faulty (const Faulty &) = delete;
  Faulty &operator= (const Faulty &) = delete;

  operator uint32_t () const { return number_; }

  /// Waits until the server has carried out such a command.
  void wait_for_command (const std::string &name) { wait_for_log (' ' + name + ' '); }

  /// Waits until the server's log has this text.
  void wait_for_log (const std::string &text) {
    EXPECT_TRUE (support::wait_until ([&] { return simulator.log ().find (text) != std::string::npos; }))
        << text;
  }

  /// Ends the server, starts it again and waits for the new connection.
  void restart () {
    simulator.kill ();
    EXPECT_TRUE (support::wait_until ([this] { return orva_connected (number_) == 0; }));
    simulator.start ();
    EXPECT_TRUE (orva_wait_until_connected (number_));
  }

private:
  const FaultsFile file_;

public:
  support::SimulatorProcess simulator;

private:
  uint32_t number_ = 0;
};
