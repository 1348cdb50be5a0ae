#pragma once

#include "support/own_address.h"

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace support {

/// The bundled simulator as a process of its own, on a loopback address of its own: the second opinion of the
/// wire, and a server that can be killed at any moment and started again. Runs since its construction until
/// its destruction. Its program is named by the environment variable ORVA_SIMULATOR, else it is the one of
/// the build. POSIX only. Used by one thread at a time.
class SimulatorProcess {
public:
  /// @param arguments as its command line takes them, without --address
  explicit SimulatorProcess (std::vector<std::string> arguments = {});
  ~SimulatorProcess ();
  SimulatorProcess (const SimulatorProcess &) = delete;
  SimulatorProcess &operator= (const SimulatorProcess &) = delete;

  /// In host byte order.
  uint32_t address () const { return address_.value (); }

  /// Whether a process has been started and not been taken away.
  bool running () const { return process_ > 0; }

  /// Starts it, if it does not run, and waits until it listens. A failure of the test when it does not.
  void start ();

  /// Takes it away as a crash or a power failure does. Connections end, nothing is tidied up.
  void kill ();

  /// Stops it where it is: connections stay, and nobody answers. `thaw` or `kill` ends that.
  void freeze ();
  void thaw ();

  /// Asks it to end and waits. @return its exit status, -1 when a signal ended it or it did not run
  int stop ();

  /// What it has written since its last start, line by line.
  std::string log () const;

private:
  bool spawn ();
  int wait ();

  const OwnAddress address_;
  const std::vector<std::string> arguments_;
  const std::string log_file_;
  pid_t process_ = 0;
};

} // namespace support
