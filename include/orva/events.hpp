/**
 * @file orva/events.hpp
 * Events of servers. Each kind has its own type. A handler is called with them, or a queue collects them.
 */
#ifndef ORVA_EVENTS_HPP
#define ORVA_EVENTS_HPP

#include "call.hpp"
#include "channel.hpp"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

namespace orva {

/** The server is connected. */
struct LinkUp {};
/** The server is not connected. The values of its channels stay as last reported. */
struct LinkDown {};
struct StatusChanged {
  Channel channel;
  Status status;
};
/** Another clip is on the channel. The name is empty when no clip is. */
struct ClipLoaded {
  Channel channel;
  std::string clip;
};
struct PositionChanged {
  Channel channel;
  Position position;
};
struct SpeedChanged {
  Channel channel;
  double speed;
};
struct LengthChanged {
  Channel channel;
  Position length;
};
struct PrecuedChanged {
  Channel channel;
  std::uint32_t count;
};
struct RepeatChanged {
  Channel channel;
  Repeat repeat;
};
struct AngleChanged {
  Channel channel;
  std::uint32_t angle;
  std::uint32_t count;
};
struct InputChanged {
  Channel channel;
  Input input;
};
struct ClipAdded {
  std::string clip;
};
struct ClipDeleted {
  std::string clip;
};
/** The attributes, the metadata or the content of a clip have changed. */
struct ClipEdited {
  std::string clip;
};
struct DirectoryAdded {
  std::string directory;
};
struct DirectoryDeleted {
  std::string directory;
};
/** Everything in the Interest is reported from now on, and its present values were events before this one.
 * This event comes once in each subscription. */
struct Watching {};
/** The server does not report something that a subscription watches. It is asked again each second. All
 * subscriptions of the server get this event. */
struct WatchFailed {
  std::string what; /**< "the clips", "the directories" or, for example, "channel A" */
  Failure failure;
};

/** Something that happened on a server. Changes that a server reports together can come in any order. */
struct Event {
  using What =
      std::variant<LinkUp, LinkDown, StatusChanged, ClipLoaded, PositionChanged, SpeedChanged, LengthChanged,
                   PrecuedChanged, RepeatChanged, AngleChanged, InputChanged, ClipAdded, ClipDeleted,
                   ClipEdited, DirectoryAdded, DirectoryDeleted, Watching, WatchFailed>;

  Address server;
  What what;
  std::chrono::steady_clock::time_point when; /**< when the library noticed it */

  /** The event if it is of this kind, else null: `if (const auto *up = event.as<orva::LinkUp> ())`. */
  template <class T>
  const T *as () const {
    return std::get_if<T> (&what);
  }
};

/** What a subscription watches. It always watches the link. */
struct Interest {
  Channels channels = Channels::all ();
  bool positions = false;  /**< positions of channels; up to one event for each field */
  bool clips = true;       /**< clips that are added, deleted and edited */
  bool directories = true; /**< directories that are added and deleted */
};

namespace detail {

/** One subscription. */
class Slot {
public:
  Slot (Interest wanted, std::function<void (const Event &)> handler)
      : interest (wanted), handler_ (std::move (handler)) {}

  /** Calls the handler, unless the subscription has ended. Ignores what the handler throws. */
  void tell (const Event &event) {
    const std::lock_guard<std::recursive_mutex> hold (lock_);
    if (!active_)
      return;
    try {
      handler_ (event);
    } catch (...) {
    }
  }
  /** Ends the subscription. Waits while the handler runs on another thread. It is not called again. */
  void end () {
    const std::lock_guard<std::recursive_mutex> hold (lock_);
    active_ = false;
  }
  bool active () const { return active_; }

  const Interest interest;
  // Only the thread of Watch uses these.
  bool fresh = true;  ///< has not got the events of the present state yet
  bool ready = false; ///< has got the event Watching

private:
  std::recursive_mutex lock_; ///< held while the handler runs
  std::atomic<bool> active_{true};
  const std::function<void (const Event &)> handler_;
};

/** The parts of a channel's state that a server reports together. */
enum Item : unsigned { item_clip, item_status, item_speed, item_position, item_information, item_count };

/**
 * The thread that watches one server. It never waits for an answer of the server. A helper thread asks for
 * the reports, one after the other.
 * @tparam E always Event. As a template, this is compiled only in programs that watch something.
 */
template <class E = Event>
class Watch : public Watcher, public std::enable_shared_from_this<Watch<E>> {
public:
  std::shared_ptr<Slot> add (const std::shared_ptr<Core> &core, Interest interest,
                             std::function<void (const Event &)> handler) {
    auto slot = std::make_shared<Slot> (interest, std::move (handler));
    const std::lock_guard<std::mutex> hold (lock_);
    if (!thread_.joinable () && !stopped_)
      thread_ = std::thread ([self = this->shared_from_this (), core] { self->run (core); });
    slots_.push_back (slot); // after what can fail, so that nobody calls a handler that was not accepted
    return slot;
  }

  /** Ends all subscriptions and the thread. When a handler calls this, the thread ends after the handler. */
  void stop () override {
    std::thread thread;
    std::vector<std::shared_ptr<Slot>> slots;
    {
      const std::lock_guard<std::mutex> hold (lock_);
      stopped_ = true;
      thread.swap (thread_);
      slots.swap (slots_);
    }
    for (const auto &slot : slots)
      slot->end ();
    if (!thread.joinable ())
      return;
    if (thread.get_id () == std::this_thread::get_id ())
      thread.detach ();
    else
      thread.join ();
  }

private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::uint32_t tick_ms = 20;

  void run (const std::shared_ptr<Core> &core) {
    for (;;) {
      try {
        if (!step (core))
          return;
      } catch (...) { // no memory for an event, which is lost; the next change is an event again
      }
    }
  }

  /** Handles one notice, or what is due after a tick. Returns false when the thread must end. */
  bool step (const std::shared_ptr<Core> &core) {
    const std::uint32_t server = core->connection ();
    std::uint32_t notice = ORVA_NOTICE_NONE, channel = 0;
    if (server == 0 || orva_get_notification (server, tick_ms, &notice, &channel) != ORVA_OK)
      return false;
    if (!take_slots ())
      return false;
    look_at_link (*core);
    greet (*core);
    start_asking (core);
    look_at_new_items (*core, server);
    tell_ready (*core);
    if (notice != ORVA_NOTICE_NONE)
      look (*core, server, Channel (channel), item_of (notice));
    if (Clock::now () >= next_names_) {
      look_at_names (*core, server);
      next_names_ = Clock::now () + std::chrono::milliseconds (tick_ms);
    }
    return true;
  }

  static Item item_of (std::uint32_t notice) {
    switch (notice) {
    case ORVA_NOTICE_CLIP:
      return item_clip;
    case ORVA_NOTICE_STATUS:
      return item_status;
    case ORVA_NOTICE_SPEED:
      return item_speed;
    case ORVA_NOTICE_POSITION:
      return item_position;
    default:
      return item_information;
    }
  }

  // --- Subscriptions

  /** Removes the slots that have ended, and copies the others for this step. Returns false when the thread
   * must end. */
  bool take_slots () {
    const std::lock_guard<std::mutex> hold (lock_);
    for (std::size_t i = 0; i != slots_.size ();)
      if (slots_[i]->active ())
        ++i;
      else
        slots_.erase (slots_.begin () + static_cast<std::ptrdiff_t> (i));
    present_ = slots_;
    return !stopped_;
  }

  /** The items of a channel that a subscription watches: bit n is Item n. */
  static std::uint32_t items (const Interest &interest, Channel channel) {
    if (!interest.channels.contains (channel))
      return 0;
    return interest.positions ? (1u << item_count) - 1 : ((1u << item_count) - 1) & ~(1u << item_position);
  }

  void tell_slot (const Core &core, Slot &slot, typename E::What what) const {
    slot.tell (E{core.address (), std::move (what), Clock::now ()});
  }
  void tell_all (const Core &core, const typename E::What &what) const {
    for (const auto &slot : present_)
      tell_slot (core, *slot, what);
  }
  void tell_names (const Core &core, const typename E::What &what, bool Interest::*wanted) const {
    for (const auto &slot : present_)
      if (slot->interest.*wanted)
        tell_slot (core, *slot, what);
  }

  /** Sends the present state to new subscriptions: the link, and the values that are known. */
  void greet (const Core &core) {
    for (const auto &slot : present_) {
      if (!slot->fresh)
        continue;
      slot->fresh = false;
      tell_slot (core, *slot, up_ ? typename E::What (LinkUp{}) : typename E::What (LinkDown{}));
      for (const Channel channel : Channels::all ())
        for (unsigned item = 0; item != item_count; ++item)
          if ((told_[channel.number ()] & items (slot->interest, channel) & 1u << item) != 0)
            for_each_value (channel, known_[channel.number ()], nullptr, static_cast<Item> (item),
                            [&] (typename E::What what) { tell_slot (core, *slot, std::move (what)); });
    }
  }

  // --- The link

  void look_at_link (Core &core) {
    const bool up = core.connected ();
    if (!up && core.connection () == 0) // closed, so nothing was lost
      return;
    if (up)
      core.seen ();
    if (up == up_ && link_known_)
      return;
    const bool first = !link_known_;
    link_known_ = true;
    up_ = up;
    for (const auto &slot : present_)
      if (!first && !slot->fresh)
        tell_slot (core, *slot, up ? typename E::What (LinkUp{}) : typename E::What (LinkDown{}));
    if (up) {
      const std::lock_guard<std::mutex> hold (lock_);
      next_asking_ = Clock::now ();
    }
  }

  // --- Reports, which must be asked for once

  struct Question {
    Channel channel;
    Item item;
  };

  /** Starts a helper thread that asks for missing reports, unless one is running. Also sends the events about
   * reports that failed. */
  void start_asking (const std::shared_ptr<Core> &core) {
    bool clips = false, directories = false;
    std::vector<Question> questions;
    std::vector<WatchFailed> failed;
    {
      const std::lock_guard<std::mutex> hold (lock_);
      failed.swap (failed_);
      if (up_ && !asking_ && Clock::now () >= next_asking_)
        collect (questions, clips, directories);
      asking_ = asking_ || clips || directories || !questions.empty ();
    }
    for (WatchFailed &each : failed)
      tell_all (*core, std::move (each));
    if (!clips && !directories && questions.empty ())
      return;
    const bool running =
        core->helpers->run ([self = this->shared_from_this (), core, questions, clips, directories] {
          self->ask (*core, questions, clips, directories);
        });
    if (!running)
      asked ();
  }

  void collect (std::vector<Question> &questions, bool &clips, bool &directories) const {
    for (const auto &slot : present_) {
      clips = clips || (slot->interest.clips && !clips_tracked_);
      directories = directories || (slot->interest.directories && !directories_tracked_);
    }
    for (const Channel channel : Channels::all ()) {
      std::uint32_t wanted = 0;
      for (const auto &slot : present_)
        wanted |= items (slot->interest, channel);
      wanted &= ~known_items_[channel.number ()];
      for (unsigned item = 0; item != item_count; ++item)
        if ((wanted & 1u << item) != 0)
          questions.push_back ({channel, static_cast<Item> (item)});
    }
  }

  /** Asks for reports. Runs on a helper thread. */
  void ask (Core &core, const std::vector<Question> &questions, bool clips, bool directories) {
    if (clips)
      ask_one (core, "the clips", [&] (std::uint32_t server) {
        must (orva_track_clip_changes (server));
        const std::lock_guard<std::mutex> hold (lock_);
        clips_tracked_ = true;
      });
    if (directories)
      ask_one (core, "the directories", [&] (std::uint32_t server) {
        must (orva_track_directory_changes (server));
        const std::lock_guard<std::mutex> hold (lock_);
        directories_tracked_ = true;
      });
    for (const Question &question : questions)
      ask_one (core, std::string ("channel ") + question.channel.letter (), [&] (std::uint32_t server) {
        ChannelState scratch;
        read (server, question.channel, question.item, scratch);
        const std::lock_guard<std::mutex> hold (lock_);
        known_items_[question.channel.number ()] |= 1u << question.item;
      });
    asked ();
  }

  template <class Ask>
  void ask_one (const Core &core, const std::string &what, Ask ask) {
    const result<void> outcome =
        attempt<void> (core.connection (), true, [&] (std::uint32_t server) -> std::uint32_t {
          ask (server);
          return ORVA_OK;
        });
    if (outcome || outcome.failure ().kind == Kind::link_lost ||
        outcome.failure ().kind == Kind::not_connected)
      return;
    const std::lock_guard<std::mutex> hold (lock_);
    failed_.push_back ({what, outcome.failure ()});
  }

  void asked () {
    const std::lock_guard<std::mutex> hold (lock_);
    asking_ = false;
    next_asking_ = Clock::now () + std::chrono::seconds (1);
  }

  // --- Values of channels

  static void read (std::uint32_t server, Channel channel, Item item, ChannelState &state) {
    using Read = void (*) (std::uint32_t, std::uint32_t, ChannelState &);
    static constexpr Read reads[item_count] = {read_clip, read_status, read_speed, read_position,
                                               read_information};
    reads[item](server, channel.number (), state);
  }

  /** Calls `tell` with an event for each value of an item that differs from the old one. Without old values
   * it does so for each value. */
  template <class Tell>
  static void for_each_value (Channel channel, const ChannelState &now, const ChannelState *old, Item item,
                              Tell tell) {
    const auto differs = [&] (auto member) { return old == nullptr || now.*member != old->*member; };
    if (item == item_clip && differs (&ChannelState::clip))
      tell (ClipLoaded{channel, now.clip});
    if (item == item_status && differs (&ChannelState::status))
      tell (StatusChanged{channel, now.status});
    if (item == item_speed && differs (&ChannelState::speed))
      tell (SpeedChanged{channel, now.speed});
    if (item == item_position && differs (&ChannelState::position))
      tell (PositionChanged{channel, now.position});
    if (item != item_information)
      return;
    if (differs (&ChannelState::length))
      tell (LengthChanged{channel, now.length});
    if (differs (&ChannelState::precued))
      tell (PrecuedChanged{channel, now.precued});
    if (differs (&ChannelState::repeat))
      tell (RepeatChanged{channel, now.repeat});
    if (differs (&ChannelState::angle) || differs (&ChannelState::angle_count))
      tell (AngleChanged{channel, now.angle, now.angle_count});
    if (differs (&ChannelState::input))
      tell (InputChanged{channel, now.input});
  }

  /** Sends events of the first values of new reports. */
  void look_at_new_items (const Core &core, std::uint32_t server) {
    for (const Channel channel : Channels::all ()) {
      std::uint32_t fresh = 0;
      {
        const std::lock_guard<std::mutex> hold (lock_);
        fresh = known_items_[channel.number ()] & ~told_[channel.number ()];
      }
      for (unsigned item = 0; item != item_count; ++item)
        if ((fresh & 1u << item) != 0)
          tell_item (core, server, channel, static_cast<Item> (item), true);
    }
  }

  /** Sends events for an item that has changed. Does nothing when nobody watches the item, because a query
   * could wait. */
  void look (const Core &core, std::uint32_t server, Channel channel, Item item) {
    if (channel.valid () && (told_[channel.number ()] & 1u << item) != 0)
      tell_item (core, server, channel, item, false);
  }

  /** Sends Watching to each subscription whose whole Interest is reported. */
  void tell_ready (const Core &core) {
    bool clips = false, directories = false;
    {
      const std::lock_guard<std::mutex> hold (lock_);
      clips = clips_tracked_;
      directories = directories_tracked_;
    }
    for (const auto &slot : present_) {
      bool ready =
          !slot->ready && (clips || !slot->interest.clips) && (directories || !slot->interest.directories);
      for (const Channel channel : Channels::all ())
        ready = ready && (items (slot->interest, channel) & ~told_[channel.number ()]) == 0;
      if (!ready)
        continue;
      slot->ready = true;
      tell_slot (core, *slot, Watching{});
    }
  }

  void tell_item (const Core &core, std::uint32_t server, Channel channel, Item item, bool first) {
    ChannelState &known = known_[channel.number ()];
    const ChannelState old = known;
    read (server, channel, item, known);
    told_[channel.number ()] |= 1u << item;
    for_each_value (channel, known, first ? nullptr : &old, item, [&] (const typename E::What &what) {
      for (const auto &slot : present_)
        if ((items (slot->interest, channel) & 1u << item) != 0)
          tell_slot (core, *slot, what);
    });
  }

  // --- Names of clips and directories

  template <class Make>
  void take_names (const Core &core, std::uint32_t server,
                   std::uint32_t (*next) (std::uint32_t, OrvaStringBuffer), bool Interest::*wanted,
                   Make make) {
    for (std::string name;;) {
      must (take_text ([&] (OrvaStringBuffer text) { return next (server, text); }, name));
      if (name.empty ())
        return;
      tell_names (core, make (std::move (name)), wanted);
    }
  }

  void look_at_names (const Core &core, std::uint32_t server) {
    bool clips = false, directories = false;
    {
      const std::lock_guard<std::mutex> hold (lock_);
      clips = clips_tracked_;
      directories = directories_tracked_;
    }
    using Name = std::string;
    if (clips) {
      take_names (core, server, orva_track_change_deleted_clip, &Interest::clips,
                  [] (Name name) { return ClipDeleted{std::move (name)}; });
      take_names (core, server, orva_track_change_added_clip, &Interest::clips,
                  [] (Name name) { return ClipAdded{std::move (name)}; });
      take_names (core, server, orva_track_change_changed_clip, &Interest::clips,
                  [] (Name name) { return ClipEdited{std::move (name)}; });
    }
    if (directories) {
      take_names (core, server, orva_track_change_deleted_directory, &Interest::directories,
                  [] (Name name) { return DirectoryDeleted{std::move (name)}; });
      take_names (core, server, orva_track_change_added_directory, &Interest::directories,
                  [] (Name name) { return DirectoryAdded{std::move (name)}; });
    }
  }

  std::mutex lock_; // guards the members up to the blank line
  std::vector<std::shared_ptr<Slot>> slots_;
  std::thread thread_;
  bool stopped_ = false;
  bool asking_ = false;
  Clock::time_point next_asking_;
  bool clips_tracked_ = false;
  bool directories_tracked_ = false;
  std::array<std::uint32_t, 8> known_items_{}; ///< by channel: items that queries return without traffic
  std::vector<WatchFailed> failed_;

  // Only the thread of Watch uses these.
  std::vector<std::shared_ptr<Slot>> present_;
  bool link_known_ = false;
  bool up_ = false;
  std::array<std::uint32_t, 8> told_{}; ///< by channel: items of known_ that have values
  std::array<ChannelState, 8> known_;
  Clock::time_point next_names_;
};

template <class E = Event>
std::shared_ptr<Slot> subscribe (const std::shared_ptr<Core> &core, Interest interest,
                                 std::function<void (const Event &)> handler) {
  const char *const bad = interest.channels.valid () ? nullptr : checked (interest.channels).bad ();
  if (bad != nullptr)
    throw invalid (bad);
  std::shared_ptr<Watch<E>> watch;
  {
    // close() takes the watch away after it has made the connection number 0.
    const std::lock_guard<std::mutex> hold (core->watch_lock);
    if (core->connection () == 0)
      closed_failure ().raise ();
    if (!core->watch)
      core->watch = std::make_shared<Watch<E>> ();
    watch = std::static_pointer_cast<Watch<E>> (core->watch);
  }
  try {
    return watch->add (core, interest, std::move (handler));
  } catch (const std::system_error &) {
    throw internal ("The system has no thread to give");
  }
}

} // namespace detail

/** Keeps a handler subscribed. The destructor ends the subscription, as end() does. */
class [[nodiscard]] Subscription {
public:
  Subscription () = default;
  explicit Subscription (std::shared_ptr<detail::Slot> slot) : slot_ (std::move (slot)) {}
  ~Subscription () { end (); }
  Subscription (Subscription &&other) noexcept : slot_ (std::move (other.slot_)) {}
  Subscription &operator= (Subscription &&other) noexcept {
    if (this != &other) {
      end ();
      slot_ = std::move (other.slot_);
    }
    return *this;
  }

  /** Ends the subscription: the handler is not called again. Waits while the handler runs on another thread.
   * The handler itself may call this too. */
  void end () {
    if (slot_)
      slot_->end ();
    slot_.reset ();
  }

private:
  std::shared_ptr<detail::Slot> slot_;
};

class Server;

/**
 * Events of any number of servers, for one thread that waits for them all.
 *
 *     orva::EventQueue queue;
 *     queue.watch (first);
 *     queue.watch (second, {.channels = orva::A | orva::B, .positions = true});
 *     for (const orva::Event &event : queue)
 *       ...
 *
 * The queue keeps all events until they are taken. Positions are the exception: a new position replaces one
 * of the same channel that is still in the queue, at the same place. Any number of threads may use a queue.
 */
template <class E>
class QueueOf {
public:
  /** Collects the events of a server from now on. They begin with its present state. The server may be
   * destroyed before the queue. */
  void watch (const Server &server, Interest interest = {});

  /** Waits for an event and takes it. Returns no value when the limit has passed, or when the queue is closed
   * and empty. */
  std::optional<E> next (Limit limit = no_limit) { return state_->next (limit); }

  /** Closes the queue. It accepts no more events. Loops over it take the events that are left, and end. */
  void close () { state_->close (); }

  /** Takes one event after the other, until the queue is closed and empty. */
  class iterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = E;
    using difference_type = std::ptrdiff_t;
    using pointer = const E *;
    using reference = const E &;

    iterator () = default;
    explicit iterator (QueueOf &queue) : queue_ (&queue) { ++*this; }
    reference operator* () const { return *event_; }
    pointer operator->() const { return &*event_; }
    iterator &operator++ () {
      event_ = queue_->next ();
      return *this;
    }
    friend bool operator== (const iterator &a, const iterator &b) {
      return a.event_.has_value () == b.event_.has_value ();
    }
    friend bool operator!= (const iterator &a, const iterator &b) { return !(a == b); }

  private:
    QueueOf *queue_ = nullptr;
    std::optional<E> event_;
  };
  iterator begin () { return iterator (*this); }
  iterator end () { return iterator (); }

private:
  /** Shared with the handlers. */
  class State {
  public:
    void put (const void *server, const E &event) {
      const std::lock_guard<std::mutex> hold (lock_);
      if (closed_)
        return;
      if (!replace (server, event))
        events_.push_back ({server, event});
      changed_.notify_one ();
    }
    std::optional<E> next (Limit limit) {
      const detail::Deadline deadline (limit);
      std::unique_lock<std::mutex> hold (lock_);
      const auto ready = [&] { return closed_ || !events_.empty (); };
      if (deadline.never ())
        changed_.wait (hold, ready);
      else
        changed_.wait_until (hold, deadline.at (), ready);
      if (events_.empty ())
        return {};
      std::optional<E> event (std::move (events_.front ().event));
      events_.pop_front ();
      return event;
    }
    void close () {
      const std::lock_guard<std::mutex> hold (lock_);
      closed_ = true;
      changed_.notify_all ();
    }

  private:
    struct Entry {
      const void *server;
      E event;
    };
    /** Replaces an older position of the same channel. Returns false when there is none. */
    bool replace (const void *server, const E &event) {
      const PositionChanged *const now = event.template as<PositionChanged> ();
      if (now == nullptr)
        return false;
      for (Entry &entry : events_) {
        const PositionChanged *const old = entry.event.template as<PositionChanged> ();
        if (old != nullptr && entry.server == server && old->channel == now->channel) {
          entry.event = event;
          return true;
        }
      }
      return false;
    }

    std::mutex lock_;
    std::condition_variable changed_;
    std::deque<Entry> events_;
    bool closed_ = false;
  };

  std::shared_ptr<State> state_ = std::make_shared<State> ();
  std::mutex lock_;
  std::vector<Subscription> subscriptions_; ///< guarded by lock_
};

/** A queue of events. It is a template, so that only programs that use it compile it. */
using EventQueue = QueueOf<Event>;

} // namespace orva

#endif
