#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <semaphore.h>
#include <string>
#include <string_view>
#include <thread>

/// What the system alone costs: the same bytes on the same sockets, with nothing read from them.
namespace figures {

/// The document of a command as the library writes it.
std::string stop_document (unsigned number);
std::string play_document (unsigned number);
std::string clip_document (unsigned number);

/// A connection whose replies a second thread receives, only to count them and to wake who waits.
class Handoff {
public:
  explicit Handoff (uint32_t address);
  ~Handoff ();
  Handoff (const Handoff &) = delete;
  Handoff &operator= (const Handoff &) = delete;

  /// Sends one document and waits for its reply; any number of threads.
  void call (std::string_view document);
  /// Sends @p count documents `play` with one system call each, and then waits for all replies.
  void send_many (unsigned count);

private:
  void receive ();

  const int socket_;
  sem_t answered_;
  std::mutex send_lock_;
  std::thread reader_;
};

} // namespace figures
