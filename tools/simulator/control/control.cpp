#include "control/control.h"

#include "control/address.h"
#include "control/guard.h"
#include "control/page.h"

#include <condition_variable>
#include <fmt/format.h>
#include <httplib.h>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace sim {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t most_bytes = 1u << 20; // of a request
constexpr std::size_t most_requests = 16;    // at once, pages included
constexpr std::size_t most_waiting = 64;     // above this, connections wait in the queue of the system
constexpr int most_pages = 8;
constexpr auto patience = 5s; // after this, a request that the loop has not answered fails
constexpr auto between_events = 50ms;

// Carries out requests on a number of threads. While too many requests wait, the thread that accepts
// connections waits too.
class Requests : public httplib::TaskQueue {
public:
  void enqueue (std::function<void ()> request) override {
    std::unique_lock lock (mutex_);
    changed_.wait (lock, [this] { return waiting_ < most_waiting; });
    ++waiting_;
    threads_.enqueue ([this, request = std::move (request)] {
      {
        const std::lock_guard started (mutex_);
        --waiting_;
      }
      changed_.notify_one ();
      request ();
    });
  }

  void shutdown () override { threads_.shutdown (); }

private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t waiting_ = 0;
  httplib::ThreadPool threads_{most_requests};
};

} // namespace

class Control::Http {
public:
  Http (Mailbox &mailbox, std::vector<SteeredServer *> servers, const Steering &steering)
      : mailbox_ (mailbox), api_ (std::move (servers)),
        guard_ (read_control_address (steering.control), steering.control_token) {
    server_.new_task_queue = [] { return new Requests; };
    server_.set_payload_max_length (most_bytes);
    server_.set_keep_alive_max_count (1000);
    server_.set_keep_alive_timeout (2);
    server_.set_socket_options ([] (int socket) {
      const int yes = 1;
      ::setsockopt (socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    server_.set_pre_routing_handler ([this] (const httplib::Request &request, httplib::Response &response) {
      return check_access (request, response);
    });
    if (steering.page)
      add_page ();
    add_routes ();
    const ControlAddress address = read_control_address (steering.control);
    if (!server_.bind_to_port (address.host, address.port))
      throw std::runtime_error (fmt::format ("the control address {} cannot be used", steering.control));
    thread_ = std::thread ([this] {
      server_.listen_after_bind ();
      thread_ended_ = true;
    });
  }

  ~Http () {
    {
      const std::lock_guard lock (mutex_);
      ending_ = true;
    }
    end_.notify_all ();
    while (!server_.is_running () && !thread_ended_)
      std::this_thread::yield ();
    server_.stop ();
    thread_.join ();
  }

private:
  httplib::Server::HandlerResponse check_access (const httplib::Request &request,
                                                 httplib::Response &response) {
    const Guard::Decision decision =
        guard_.check (request.get_header_value ("Host"), request.get_header_value ("Origin"),
                      request.get_header_value ("Authorization"), request.get_param_value ("token"));
    response.set_header ("X-Content-Type-Options", "nosniff");
    response.set_header ("Content-Security-Policy",
                         "default-src 'self' 'unsafe-inline'; frame-ancestors 'none'");
    response.set_header ("Cache-Control", "no-store");
    if (decision.allowed)
      return httplib::Server::HandlerResponse::Unhandled;
    response.status = decision.status;
    response.set_content (json_text ({{"error", decision.why}}), "application/json");
    return httplib::Server::HandlerResponse::Handled;
  }

  void add_page () {
    server_.Get ("/", [] (const httplib::Request &, httplib::Response &response) {
      response.set_content (std::string (control_page), "text/html; charset=utf-8");
    });
    server_.Get ("/events", [this] (const httplib::Request &request, httplib::Response &response) {
      send_events (request, response);
    });
  }

  void add_routes () {
    const auto handler = [this] (const httplib::Request &request, httplib::Response &response) {
      answer (request, response);
    };
    server_.Get (".*", handler);
    server_.Post (".*", handler);
    server_.Put (".*", handler);
    server_.Delete (".*", handler);
  }

  void answer (const httplib::Request &request, httplib::Response &response) {
    ControlRequest asked{request.method, request.path, {}, request.body};
    for (const auto &[name, value] : request.params)
      asked.query[name] = value;
    const auto reply = mailbox_.ask<ControlReply> (
        [this, asked = std::move (asked)] { return api_.handle (asked); }, patience);
    response.status = reply ? reply->status : 503;
    response.set_content (reply ? reply->body : R"({"error":"the simulator does not answer in time"})",
                          "application/json");
  }

  // Sends a page the state each time it has changed, until the page disconnects.
  void send_events (const httplib::Request &request, httplib::Response &response) {
    if (pages_.fetch_add (1) >= most_pages) {
      --pages_;
      response.status = 503;
      return response.set_content (R"({"error":"too many pages are open"})", "application/json");
    }
    const std::string server = request.get_param_value ("server");
    response.set_chunked_content_provider (
        "text/event-stream",
        [this, server, last = std::string ()] (std::size_t, httplib::DataSink &sink) mutable {
          return send_event (server, last, sink);
        },
        [this] (bool) { --pages_; });
  }

  bool send_event (const std::string &server, std::string &last, httplib::DataSink &sink) {
    const auto state =
        mailbox_.ask<std::string> ([this, server] { return api_.page_state (server); }, patience);
    if (!state)
      return false;
    if (*state != last) {
      last = *state;
      const std::string event = "data: " + *state + "\n\n";
      if (!sink.write (event.data (), event.size ()))
        return false;
    } else if (!sink.is_writable ()) {
      return false;
    }
    std::unique_lock lock (mutex_);
    return !end_.wait_for (lock, between_events, [this] { return ending_; });
  }

  Mailbox &mailbox_;
  ControlApi api_;
  const Guard guard_;
  httplib::Server server_;
  std::atomic<int> pages_{0};
  std::atomic<bool> thread_ended_{false};
  std::mutex mutex_;
  std::condition_variable end_;
  bool ending_ = false; ///< guarded by the mutex
  std::thread thread_;
};

Control::Control (Mailbox &mailbox, std::vector<SteeredServer *> servers, const Steering &steering)
    : http_ (std::make_unique<Http> (mailbox, std::move (servers), steering)) {}

Control::~Control () = default;

} // namespace sim
