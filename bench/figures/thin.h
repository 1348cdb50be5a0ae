#pragma once

#include "server.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <pugixml.hpp>
#include <semaphore.h>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <vector>

/// A client for the same server as a person would write it by hand, to compare the library with. It has the
/// same threads and locks as the library, and takes the same values from the socket to its caller. It uses
/// std::string, and pugixml to parse.
namespace figures {

struct ThinTimecode {
  bool valid = false;
  std::optional<uint32_t> standard, drop_frame;
  std::optional<int32_t> field;
};

struct ThinPosition {
  uint32_t position = 0;
  ThinTimecode display, input;
};

struct ThinChannelInformation {
  std::string clip;
  std::optional<uint32_t> length, interp, loop, loop_in, loop_out, playback, angle_count, angle, audio_tracks;
  std::optional<std::pair<uint32_t, bool>> ee;
  std::optional<uint32_t> precues, steal_status;
  std::optional<bool> in_transition;
  std::optional<double> speed;
};

struct ThinClip {
  std::string id;
  uint32_t standard = 0;
  std::vector<std::pair<uint32_t, std::optional<uint32_t>>> tracks;
  std::string title, creator, project;
  uint32_t playback = 0, interp = 0, loop = 0, loop_out = 0, loop_in = 0, length = 0, timecode_source = 0;
  ThinTimecode stripe;
  bool read_only = false;
  std::optional<std::string> id8;
  std::optional<bool> read_only_meta, read_only_content;
  std::list<std::pair<std::string, std::string>> metadata;
  std::optional<uint32_t> special, iso_count, ssm_speed, bitrate;
  ThinTimecode frame0;
  std::optional<uint32_t> trim_start, trim_end, untrimmed, compression;
  std::optional<std::string> uuid, parent_uuid;
  std::optional<uint32_t> angle;
  std::optional<uint64_t> loaded, unloaded, played, meta_edited, content_edited;
  std::optional<std::string> file_type;
};

class Thin {
public:
  explicit Thin (uint32_t address);
  ~Thin ();
  Thin (const Thin &) = delete;
  Thin &operator= (const Thin &) = delete;

  /// Commands. Each returns when it has been answered.
  void stop (uint32_t channel);
  void order (Order order, uint32_t number);
  uint32_t open_clip (std::string_view id);
  void close_clip (uint32_t handle);
  uint32_t open_list ();
  void close_list (uint32_t handle);
  void scan (std::string_view folder);

  /// @return false at the end of the list
  bool take_name (uint32_t handle, char16_t *name, size_t capacity);
  /// @return false when no change waits
  bool take_change (char16_t *key, char16_t *value, size_t capacity);

private:
  struct Pending {
    sem_t answered;
    std::vector<std::string> names{};
    ThinClip clip{};
  };
  struct Channel {
    std::mutex lock;
    uint32_t status = 0;
    double speed = 0;
    ThinPosition place;
    ThinChannelInformation information;
  };
  struct List {
    std::vector<std::string> names;
    size_t next = 0;
  };
  using Read = void (Thin::*) (pugi::xml_node body);
  using ReadReply = void (Thin::*) (pugi::xml_node body, Pending &pending);

  void run (std::string_view command, Pending &pending);
  void receive ();
  void take (char *message, size_t length);
  void take_reply (pugi::xml_node reply);
  void post_notice (uint32_t kind, uint32_t channel);
  void take_metadata (pugi::xml_node body);

  void on_speed (pugi::xml_node body);
  void on_status (pugi::xml_node body);
  void on_clip_changed (pugi::xml_node body);
  void on_timecode (pugi::xml_node body);
  void on_information (pugi::xml_node body);

  const int socket_;
  std::thread reader_;
  pugi::xml_document document_;
  static const std::unordered_map<std::string_view, Read> reports;

  std::mutex send_lock_;
  std::mutex pending_lock_;
  std::atomic<uint64_t> last_number_{0};
  std::unordered_map<uint64_t, Pending *> pending_;

  Channel channels_[12];
  std::mutex notices_lock_;
  std::condition_variable noticed_;
  bool notice_waits_[16][12]{};
  std::deque<std::pair<uint32_t, uint32_t>> notices_;
  std::mutex clips_lock_;
  std::set<std::string> added_, deleted_, changed_;

  std::mutex changes_lock_;
  std::condition_variable changed_pairs_;
  std::unordered_map<std::string, std::string> changes_;
  std::list<std::string> order_;

  std::mutex handles_lock_;
  uint32_t last_handle_ = 0;
  std::map<uint32_t, List> lists_;
  std::map<uint32_t, ThinClip> clips_;
};

} // namespace figures
