#include "support/simulator_process.h"

#include "support/wait.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

namespace {

std::string simulator_program () {
  const char *named = std::getenv ("ORVA_SIMULATOR");
  return named == nullptr ? ORVA_SIMULATOR : named;
}

std::string new_file () {
  std::string name = testing::TempDir () + "simulator-XXXXXX";
  const int file = mkstemp (name.data ());
  if (file < 0)
    ADD_FAILURE () << "no file for the simulator's log";
  else
    close (file);
  return name;
}

} // namespace

SimulatorProcess::SimulatorProcess (std::vector<std::string> arguments)
    : arguments_ (std::move (arguments)), log_file_ (new_file ()) {
  start ();
}

SimulatorProcess::~SimulatorProcess () {
  kill ();
  unlink (log_file_.c_str ());
}

// A process with many threads may not fork and go on: what a lock of another thread guards would be copied in
// the middle of a change.
bool SimulatorProcess::spawn () {
  std::vector<std::string> words = {simulator_program (), "--address", address_text (address ())};
  words.insert (words.end (), arguments_.begin (), arguments_.end ());
  std::vector<char *> pointers;
  for (std::string &word : words)
    pointers.push_back (word.data ());
  pointers.push_back (nullptr);
  posix_spawn_file_actions_t files{};
  posix_spawn_file_actions_init (&files);
  posix_spawn_file_actions_addopen (&files, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen (&files, 1, log_file_.c_str (), O_WRONLY | O_TRUNC | O_APPEND, 0);
  const int failure =
      posix_spawn (&process_, words.front ().c_str (), &files, nullptr, pointers.data (), environ);
  posix_spawn_file_actions_destroy (&files);
  if (failure == 0)
    return true;
  process_ = 0;
  ADD_FAILURE () << "cannot start \"" << words.front () << "\"; ORVA_SIMULATOR can name another";
  return false;
}

void SimulatorProcess::start () {
  if (running () || !spawn ())
    return;
  const auto listens = [this] { return log ().find ("listening on ") != std::string::npos; };
  EXPECT_TRUE (wait_until (listens)) << log ();
}

int SimulatorProcess::wait () {
  int status = 0;
  while (waitpid (process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = 0;
  return WIFEXITED (status) ? WEXITSTATUS (status) : -1;
}

void SimulatorProcess::freeze () {
  ::kill (process_, SIGSTOP);
}

void SimulatorProcess::thaw () {
  ::kill (process_, SIGCONT);
}

void SimulatorProcess::kill () {
  if (!running ())
    return;
  ::kill (process_, SIGKILL);
  wait ();
}

int SimulatorProcess::stop () {
  if (!running ())
    return -1;
  ::kill (process_, SIGTERM);
  return wait ();
}

std::string SimulatorProcess::log () const {
  std::ostringstream text;
  text << std::ifstream (log_file_).rdbuf ();
  return text.str ();
}

} // namespace support
