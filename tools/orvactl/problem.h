#pragma once

#include <orva.hpp>

#include <stdexcept>
#include <string>

namespace orvactl {

/// Exit statuses. Scripts rely on the numbers.
enum class Exit : int {
  done = 0,
  refused = 1,       ///< the server has refused
  usage = 2,         ///< the command line, the configuration or an input file is wrong; nothing was sent
  no_connection = 3, ///< there is no link, or it was lost before the answer
  timed_out = 4,     ///< no answer within the limit, or what was waited for has not happened
  not_found = 5,     ///< what was named does not exist
  failed = 6,        ///< a file or the output cannot be read or written, or the system has no resources
  interrupted = 130  ///< ended by Ctrl-C
};

/// A word for programs, such as "timed_out".
const char *word_of (Exit status);

/// Why a command has failed. Its text goes to the standard error.
class Problem : public std::runtime_error {
public:
  Problem (Exit status, const std::string &text) : std::runtime_error (text), status_ (status) {}
  Exit status () const { return status_; }

private:
  Exit status_;
};

/// The exit status that belongs to a failure of the library.
Exit exit_of (orva::Kind kind);

} // namespace orvactl
