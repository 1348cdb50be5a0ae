#include "problem.h"

namespace orvactl {

const char *word_of (Exit status) {
  switch (status) {
  case Exit::done:
    return "done";
  case Exit::refused:
    return "refused";
  case Exit::usage:
    return "usage";
  case Exit::no_connection:
    return "no_connection";
  case Exit::timed_out:
    return "timed_out";
  case Exit::not_found:
    return "not_found";
  case Exit::interrupted:
    return "interrupted";
  case Exit::failed:
    break;
  }
  return "failed";
}

Exit exit_of (orva::Kind kind) {
  switch (kind) {
  case orva::Kind::invalid:
    return Exit::usage;
  case orva::Kind::not_connected:
  case orva::Kind::link_lost:
    return Exit::no_connection;
  case orva::Kind::refused:
  case orva::Kind::unsupported:
    return Exit::refused;
  case orva::Kind::timed_out:
    return Exit::timed_out;
  case orva::Kind::cancelled:
    return Exit::interrupted;
  case orva::Kind::internal:
    break;
  }
  return Exit::failed;
}

} // namespace orvactl
