#pragma once

#include "control/api.h"

#include <asio.hpp>
#include <functional>
#include <string>
#include <vector>

namespace sim {

/// A scenario: what is done to servers, and what clients are expected to send. The steps are taken one after
/// another. One thread.
class Script {
public:
  /// Reads a script. @throws std::runtime_error that names the file and what is wrong in it
  Script (asio::io_context &context, ControlApi &api, const std::string &file);

  /// Takes the steps. @param ended is called once, with what has gone wrong, or nothing
  void start (std::function<void (std::string problem)> ended);

private:
  struct Pattern {
    std::string command; ///< `*` for all
    std::string channel; ///< empty: any
    int client = 0;      ///< 0: any
    Json arguments;      ///< those that must be there
  };
  struct Step {
    enum class Kind { act, expect, forbid } kind = Kind::act;
    std::chrono::milliseconds after{0};
    std::string server;
    ControlRequest request;            ///< of `act`
    Pattern pattern;                   ///< of the others
    std::chrono::milliseconds span{0}; ///< how long is waited
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
  std::map<std::string, std::uint64_t> marks_; ///< by server: expectations look behind them
  asio::steady_timer::time_point until_;
  std::function<void (std::string)> ended_;
};

} // namespace sim
