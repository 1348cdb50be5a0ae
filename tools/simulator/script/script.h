#pragma once

#include "control/api.h"

#include <asio.hpp>
#include <functional>
#include <string>
#include <vector>

namespace sim {

/// A scenario: requests to servers, and commands that clients are expected to send. The steps are carried out
/// one after another. One thread.
class Script {
public:
  /// Reads a script. @throws std::runtime_error that names the file and what is wrong in it
  Script (asio::io_context &context, ControlApi &api, const std::string &file);

  /// Starts to carry out the steps.
  /// @param ended is called once at the end, with what has gone wrong or an empty text
  void start (std::function<void (std::string problem)> ended);

private:
  struct Pattern {
    std::string command; ///< `*` for all
    std::string channel; ///< empty: any
    int client = 0;      ///< 0: any
    Json arguments;      ///< those that the command must have
  };
  struct Step {
    enum class Kind { act, expect, forbid } kind = Kind::act;
    std::chrono::milliseconds after{0};
    std::string server;
    ControlRequest request;            ///< of `act`
    Pattern pattern;                   ///< of the others
    std::chrono::milliseconds span{0}; ///< how long to wait
  };

  static Step step_from (const Json &json);
  static Pattern pattern_from (const Json &json);
  static ControlRequest request_from (const Json &json);

  void take_next ();
  void begin ();
  void act (const Step &step);
  void watch ();
  void fail (const std::string &problem);
  bool find (const Step &step);
  static bool matches (const Pattern &pattern, const Journal::Entry &entry);

  ControlApi &api_;
  asio::steady_timer timer_;
  std::vector<Step> steps_;
  std::size_t now_ = 0;
  std::map<std::string, std::uint64_t> marks_; ///< by server: the journal's mark of the command found last
  asio::steady_timer::time_point until_;
  std::function<void (std::string)> ended_;
};

} // namespace sim
