// top: the channels of servers, live.
#include "terminal.h"
#include "views.h"

#include <algorithm>
#include <array>
#include <ctime>

namespace orvactl {

namespace {

using State = orva::result<orva::ChannelState>;

/// What is known of one server. Nothing here waits for an answer.
class Watched {
public:
  explicit Watched (Link &link) : link_ (link) {}

  const std::string &label () const { return link_.label (); }
  bool connected () { return link_.server ().connected (); }
  /// How positions are counted, once it is known.
  const std::optional<orva::Timebase> &base () const { return base_; }
  const std::optional<orva::ChannelState> &state (orva::Channel channel) const {
    return channels_[channel.number ()].state;
  }

  /// Takes what has been reported, and asks for what has never been.
  void look () {
    if (!connected ())
      return;
    const auto ask = link_.server ().async ();
    if (!base_)
      take<orva::Video> (
          video_, [&] { return ask.video (); },
          [&] (const orva::Video &video) { base_ = video.timebase (); });
    for (const orva::Channel channel : orva::Channels::all ())
      look_at (channel);
  }

private:
  struct Known {
    std::optional<std::future<State>> asked;
    std::optional<orva::ChannelState> state;
  };

  template <class T, class Ask, class Keep>
  void take (std::optional<std::future<orva::result<T>>> &asked, Ask ask, Keep keep) {
    if (!asked)
      asked = ask ();
    if (asked->wait_for (std::chrono::seconds (0)) != std::future_status::ready)
      return;
    if (const orva::result<T> answer = asked->get ())
      keep (*answer);
    asked.reset ();
  }

  void look_at (orva::Channel channel) {
    Known &known = channels_[channel.number ()];
    if (known.state) { // from now on it is known without asking
      if (const State state = link_.server ().nothrow ().channel (channel).state ())
        known.state = *state;
      return;
    }
    take<orva::ChannelState> (
        known.asked, [&] { return link_.server ().async ().channel (channel).state (); },
        [&] (const orva::ChannelState &state) { known.state = state; });
  }

  Link &link_;
  std::optional<std::future<orva::result<orva::Video>>> video_;
  std::optional<orva::Timebase> base_;
  std::array<Known, 8> channels_;
};

enum class Order { channel, status, remaining };
const char *name_of (Order order) {
  return order == Order::channel ? "channel" : order == Order::status ? "status" : "remaining";
}

/// A row of the table of channels without the columns that count frames, so that a line is short.
template <class T>
std::vector<T> without_frames (std::vector<T> row) {
  row.erase (row.begin () + 7);
  row.erase (row.begin () + 5);
  return row;
}

struct Row {
  std::vector<Cell> cells;
  int activity;
  std::int64_t remaining;
};

/// The beginning of a line that fits so many columns. Colours take none.
std::string cut (const std::string &line, std::size_t columns) {
  std::string all;
  std::size_t width = 0;
  for (std::size_t i = 0, end = 0; i != line.size (); i = end) {
    if (line[i] == '\x1b') {
      end = std::min (line.find ('m', i), line.size () - 1) + 1;
    } else {
      end = i + 1;
      while (end != line.size () && (static_cast<unsigned char> (line[end]) & 0xC0u) == 0x80)
        ++end;
      width += width_of (std::string_view (line).substr (i, end - i));
      if (width > columns)
        continue;
    }
    all.append (line, i, end - i);
  }
  return all;
}

class Screen {
public:
  Screen (Session &session, std::chrono::milliseconds interval) : session_ (session), interval_ (interval) {
    for (Link &link : session.links ()) {
      link.server ().set_limit (session.clock ().limit ());
      servers_.emplace_back (link);
    }
  }

  Exit run () {
    catch_interrupts ();
    FullScreen terminal;
    while (!interrupted ()) {
      if (!paused_)
        for (Watched &server : servers_)
          server.look ();
      paint ();
      if (const auto key = terminal.key (interval_); key && !obey (*key))
        break;
    }
    return Exit::done;
  }

private:
  /// False at the end.
  bool obey (char key) {
    if (key == 'p' || key == ' ')
      paused_ = !paused_;
    if (key == 's')
      order_ = order_ == Order::channel  ? Order::status
               : order_ == Order::status ? Order::remaining
                                         : Order::channel;
    return key != 'q' && key != 3;
  }

  std::vector<Row> rows () {
    std::vector<Row> all;
    for (Watched &server : servers_) {
      const std::size_t before = all.size ();
      for (const orva::Channel channel : orva::Channels::all ())
        if (server.connected () && server.base () && server.state (channel))
          all.push_back (row_of (server, channel));
      if (all.size () == before)
        all.push_back (row_without_channels (server));
    }
    if (order_ != Order::channel)
      std::stable_sort (all.begin (), all.end (), [&] (const Row &a, const Row &b) {
        return order_ == Order::status ? a.activity > b.activity : a.remaining < b.remaining;
      });
    return all;
  }

  static Row row_of (Watched &server, orva::Channel channel) {
    const orva::ChannelState &state = *server.state (channel);
    Row row{channel_row (state, channel, *server.base ()), static_cast<int> (state.status),
            state.clip.empty () ? INT64_MAX : state.remaining.fields ()};
    row.cells.insert (row.cells.begin (), Cell{shown (server.label ())});
    return row;
  }

  static Row row_without_channels (Watched &server) {
    const bool up = server.connected ();
    Row row{
        {{shown (server.label ())}, {"-"}, {"-"}, {up ? "connecting" : "no connection", up ? yellow : red}},
        99,
        -1};
    row.cells.resize (channel_heading (true).size ());
    return row;
  }

  void paint () {
    const TerminalSize size = terminal_size ();
    std::vector<std::vector<Cell>> cells;
    for (const Row &row : rows ())
      cells.push_back (without_frames (row.cells));
    std::vector<std::string> lines = {title (), ""};
    for (const std::string &line :
         table_lines (without_frames (channel_heading (true)), cells, session_.out ().colours ()))
      lines.push_back (line);
    std::string text = "\x1b[H";
    for (std::size_t i = 0; i != std::min (lines.size (), size.rows); ++i)
      text += (i == 0 ? "" : "\r\n") + cut (lines[i], size.columns) + "\x1b[K";
    session_.out ().raw (text + "\x1b[J");
    session_.out ().flush ();
  }

  std::string title () const {
    const std::time_t now = std::time (nullptr);
    char time[16];
    std::strftime (time, sizeof time, "%H:%M:%S", std::localtime (&now));
    return std::string ("orvactl top  ") + time + "  sorted by " + name_of (order_) +
           (paused_ ? "  PAUSED" : "") + "  q quit, p pause, s sort";
  }

  Session &session_;
  const std::chrono::milliseconds interval_;
  std::deque<Watched> servers_;
  Order order_ = Order::channel;
  bool paused_ = false;
};

Exit top (Session &session, const Arguments &arguments) {
  if (session.out ().json () || !is_terminal (stdout) || !is_terminal (stdin))
    throw Problem (Exit::usage, "top needs a terminal. \"channels\" and \"watch\" do not.");
  const auto interval = arguments.time_or ("--interval", std::chrono::milliseconds (250));
  return Screen (session, std::max (std::chrono::milliseconds (50),
                                    std::chrono::duration_cast<std::chrono::milliseconds> (interval)))
      .run ();
}

} // namespace

Family top_commands () {
  return {{"top",
           "show the channels of servers live; q quits, p pauses, s sorts",
           {{"--interval", Takes::time, "time between two pictures; 250ms by default"}},
           "orvactl --server 10.0.0.5 --server 10.0.0.6 top",
           top,
           Servers::many}};
}

} // namespace orvactl
