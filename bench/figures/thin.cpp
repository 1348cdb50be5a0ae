#include "thin.h"

#include "sockets.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

namespace figures {

namespace {

/// Reads children in the order in which they usually stand, so that none is looked for as a rule.
class Fields {
public:
  explicit Fields (pugi::xml_node parent) : parent_ (parent), next_ (parent.first_child ()) {}

  pugi::xml_node node (const char *name) {
    pugi::xml_node found = std::strcmp (next_.name (), name) == 0 ? next_ : parent_.child (name);
    if (found)
      next_ = found.next_sibling ();
    return found;
  }
  const char *text (const char *name) { return node (name).child_value (); }

  template <class T>
  T number (const char *name) {
    const std::string_view digits = text (name);
    T value{};
    std::from_chars (digits.data (), digits.data () + digits.size (), value);
    return value;
  }
  template <size_t N>
  uint32_t word (const char *name, const std::string_view (&words)[N]) {
    const std::string_view spelling = text (name);
    for (uint32_t i = 0; i != N; ++i)
      if (words[i] == spelling)
        return i;
    return UINT32_MAX;
  }
  bool truth (const char *name) { return std::strcmp (text (name), "true") == 0; }
  uint32_t channel () { return static_cast<uint32_t> (text ("Channel")[0] - 'A') % 12; }
  bool has (const char *name) { return std::strcmp (next_.name (), name) == 0 || parent_.child (name); }

  template <class T>
  std::optional<T> maybe_number (const char *name) {
    return has (name) ? std::optional<T> (number<T> (name)) : std::nullopt;
  }
  template <size_t N>
  std::optional<uint32_t> maybe_word (const char *name, const std::string_view (&words)[N]) {
    return has (name) ? std::optional<uint32_t> (word (name, words)) : std::nullopt;
  }
  std::optional<bool> maybe_truth (const char *name) {
    return has (name) ? std::optional<bool> (truth (name)) : std::nullopt;
  }
  std::optional<std::string> maybe_text (const char *name) {
    return has (name) ? std::optional<std::string> (text (name)) : std::nullopt;
  }

private:
  pugi::xml_node parent_, next_;
};

constexpr std::string_view states[] = {"nochannel", "idle",   "cueing",      "stop",     "play",
                                       "record",    "insert", "testpattern", "timedelay"};
constexpr std::string_view standards[] = {
    "4K_60p",      "4K_59_94p",   "4K_50p",        "4K_30p",   "4K_29_97p",   "4K_25p",      "4K_24p",
    "4K_23_98p",   "1080_60p",    "1080_59_94p",   "1080_50p", "1080_30p",    "1080_29_97p", "1080_25p",
    "1080_24p",    "1080_23_98p", "1080_23_98psf", "1080_60i", "1080_59_94i", "1080_50i",    "1080_48i",
    "1080_47_95i", "720_60p",     "720_59_94p",    "720_50p",  "625_50i",     "525_59_94i"};
constexpr std::string_view drop_frames[] = {"df", "ndf"};
constexpr std::string_view interps[] = {"auto", "on", "off"};
constexpr std::string_view loops[] = {"off", "loop", "loopto", "pingpong", "pingpongto", "auto", "record"};
constexpr std::string_view playbacks[] = {"auto", "field", "f12"};
constexpr std::string_view steals[] = {"available", "import", "export"};
constexpr std::string_view sources[] = {"zerobased", "striped", "rectc", "rec0_stripe"};
constexpr std::string_view tracks[] = {"video", "key", "audio", "timecode"};
constexpr std::string_view specials[] = {"normal", "iso2", "iso3", "iso4", "iso5", "iso6"};
constexpr std::string_view compressions[] = {"jpeg2000", "dv", "avci", "xavc"};

ThinTimecode read_timecode (pugi::xml_node node) {
  Fields fields (node);
  ThinTimecode timecode;
  timecode.valid = fields.truth ("Valid");
  timecode.standard = fields.maybe_word ("VideoStandard", standards);
  timecode.field = fields.maybe_number<int32_t> ("FieldNumber");
  timecode.drop_frame = fields.maybe_word ("DropFrameFlag", drop_frames);
  return timecode;
}

ThinClip read_clip (pugi::xml_node node) {
  Fields f (node);
  ThinClip clip;
  clip.id = f.text ("ClipID");
  clip.standard = f.word ("VideoStandard", standards);
  for (pugi::xml_node track : f.node ("TrackInfoVector")) {
    Fields of_track (track);
    const uint32_t type = of_track.word ("TrackType", tracks);
    clip.tracks.emplace_back (type, of_track.maybe_number<uint32_t> ("TrimStart"));
  }
  clip.title = f.text ("Title");
  clip.creator = f.text ("Creator");
  clip.project = f.text ("Project");
  clip.playback = f.word ("Playback", playbacks);
  clip.interp = f.word ("Interp", interps);
  clip.loop = f.word ("Loop", loops);
  clip.loop_out = f.number<uint32_t> ("LoopOut");
  clip.loop_in = f.number<uint32_t> ("LoopIn");
  clip.length = f.number<uint32_t> ("ClipLength");
  clip.timecode_source = f.word ("TimecodeSource", sources);
  clip.stripe = read_timecode (f.node ("StripeTimecode"));
  clip.read_only = f.truth ("ReadOnly");
  clip.id8 = f.maybe_text ("ID8");
  clip.read_only_meta = f.maybe_truth ("ReadOnlyMeta");
  clip.read_only_content = f.maybe_truth ("ReadOnlyContent");
  for (pugi::xml_node item : f.node ("MetadataList")) {
    Fields of_item (item);
    const char *key = of_item.text ("Key");
    clip.metadata.emplace_back (key, of_item.text ("Value"));
  }
  clip.special = f.maybe_word ("SpecialClipType", specials);
  clip.iso_count = f.maybe_number<uint32_t> ("ISOCount");
  clip.ssm_speed = f.maybe_number<uint32_t> ("SSMSpeed");
  clip.bitrate = f.maybe_number<uint32_t> ("CompressionBitrate");
  clip.frame0 = read_timecode (f.node ("Frame0Timecode"));
  clip.trim_start = f.maybe_number<uint32_t> ("TrimStart");
  clip.trim_end = f.maybe_number<uint32_t> ("TrimEnd");
  clip.untrimmed = f.maybe_number<uint32_t> ("ClipLengthUntrimmed");
  clip.compression = f.maybe_word ("CompressionType", compressions);
  clip.uuid = f.maybe_text ("ClipUUID");
  clip.parent_uuid = f.maybe_text ("ParentUUID");
  clip.angle = f.maybe_number<uint32_t> ("Angle");
  clip.loaded = f.maybe_number<uint64_t> ("LoadedStamp");
  clip.unloaded = f.maybe_number<uint64_t> ("UnloadedStamp");
  clip.played = f.maybe_number<uint64_t> ("PlayedStamp");
  clip.meta_edited = f.maybe_number<uint64_t> ("MetaEditStamp");
  clip.content_edited = f.maybe_number<uint64_t> ("ContentEditStamp");
  clip.file_type = f.maybe_text ("ClipFileType");
  return clip;
}

// What this measurement's server sends is ASCII.
void widen (std::string_view text, char16_t *out, size_t capacity) {
  const size_t count = std::min (text.size (), capacity - 1);
  for (size_t i = 0; i != count; ++i)
    out[i] = static_cast<unsigned char> (text[i]);
  out[count] = 0;
}

} // namespace

const std::unordered_map<std::string_view, Thin::Read> Thin::reports = {
    {"channel_speed", &Thin::on_speed},       {"channel_status", &Thin::on_status},
    {"clip_changed", &Thin::on_clip_changed}, {"channel_timecode", &Thin::on_timecode},
    {"channel_info", &Thin::on_information},  {"metadata_change", &Thin::take_metadata},
};

Thin::Thin (uint32_t address) : socket_ (connect_to (address)), reader_ ([this] { receive (); }) {}

Thin::~Thin () {
  shutdown (socket_, SHUT_RDWR);
  reader_.join ();
  close (socket_);
}

// --- Commands

void Thin::run (std::string_view command, Pending &pending) {
  sem_init (&pending.answered, 0, 0);
  const uint64_t number = ++last_number_;
  {
    const std::lock_guard hold (pending_lock_);
    pending_.emplace (number, &pending);
  }
  char bytes[512];
  const int length = snprintf (bytes, sizeof bytes, "<cmd>\r\n<xid>%llu</xid>\r\n%.*s\r\n</cmd>",
                               static_cast<unsigned long long> (number), static_cast<int> (command.size ()),
                               command.data ());
  {
    const std::lock_guard hold (send_lock_);
    send_all (socket_, {bytes, static_cast<size_t> (length)});
  }
  while (sem_wait (&pending.answered) != 0) {
  }
  sem_destroy (&pending.answered);
}

void Thin::stop (uint32_t channel) {
  char command[64];
  const int length = snprintf (command, sizeof command, "<stop>\r\n<Channel>%c</Channel>\r\n</stop>",
                               static_cast<char> ('A' + channel));
  Pending pending;
  run ({command, static_cast<size_t> (length)}, pending);
}

void Thin::order (Order order, uint32_t number) {
  Pending pending;
  run ("<gotocmd>\r\n<Channel>" + std::string (1, static_cast<char> ('A' + order)) +
           "</Channel>\r\n<GotoPosition>" + std::to_string (number) + "</GotoPosition>\r\n</gotocmd>",
       pending);
}

uint32_t Thin::open_clip (std::string_view id) {
  Pending pending;
  run ("<get_clip_info>\r\n<ClipID>" + std::string (id) + "</ClipID>\r\n</get_clip_info>", pending);
  const std::lock_guard hold (handles_lock_);
  clips_.emplace (++last_handle_, std::move (pending.clip));
  return last_handle_;
}

void Thin::close_clip (uint32_t handle) {
  const std::lock_guard hold (handles_lock_);
  clips_.erase (handle);
}

uint32_t Thin::open_list () {
  Pending pending;
  run ("<download_clipids />", pending);
  const std::lock_guard hold (handles_lock_);
  lists_.emplace (++last_handle_, List{std::move (pending.names)});
  return last_handle_;
}

void Thin::close_list (uint32_t handle) {
  const std::lock_guard hold (handles_lock_);
  lists_.erase (handle);
}

void Thin::scan (std::string_view folder) {
  Pending pending;
  run ("<download_metadata>\r\n<MetadataDatabase>" + std::string (folder) +
           "</MetadataDatabase>\r\n</download_metadata>",
       pending);
}

bool Thin::take_name (uint32_t handle, char16_t *name, size_t capacity) {
  const std::lock_guard hold (handles_lock_);
  const auto found = lists_.find (handle);
  if (found == lists_.end () || found->second.next == found->second.names.size ())
    return false;
  widen (found->second.names[found->second.next++], name, capacity);
  return true;
}

bool Thin::take_change (char16_t *key, char16_t *value, size_t capacity) {
  const std::lock_guard hold (changes_lock_);
  if (order_.empty ())
    return false;
  const auto found = changes_.find (order_.front ());
  widen (found->first, key, capacity);
  widen (found->second, value, capacity);
  changes_.erase (found);
  order_.pop_front ();
  return true;
}

// --- Messages

void Thin::receive () {
  std::vector<char> buffer (1 << 18);
  size_t begin = 0, end = 0;
  for (;;) {
    if (end == buffer.size ()) {
      std::memmove (buffer.data (), buffer.data () + begin, end - begin);
      end -= begin;
      begin = 0;
    }
    const ssize_t count = recv (socket_, buffer.data () + end, buffer.size () - end, 0);
    if (count <= 0)
      return;
    end += static_cast<size_t> (count);
    for (;;) {
      char *const message = buffer.data () + begin;
      const bool is_report = end - begin > 5 && message[4] == 'o';
      const std::string_view closing = is_report ? "</report>" : "</reply>";
      const void *const found = memmem (message, end - begin, closing.data (), closing.size ());
      if (found == nullptr)
        break;
      const size_t length =
          static_cast<size_t> (static_cast<const char *> (found) - message) + closing.size ();
      take (message, length);
      begin += length;
    }
    if (begin == end)
      begin = end = 0;
  }
}

void Thin::take (char *message, size_t length) {
  if (!document_.load_buffer_inplace (message, length, pugi::parse_minimal | pugi::parse_escapes))
    give_up ("parse");
  const pugi::xml_node root = document_.first_child ();
  if (root.name ()[4] == 'y')
    return take_reply (root);
  const pugi::xml_node body = root.first_child ();
  const auto found = reports.find (body.name ());
  if (found != reports.end ())
    (this->*found->second) (body);
}

void Thin::take_reply (pugi::xml_node reply) {
  Fields fields (reply);
  const uint64_t number = fields.number<uint64_t> ("xid");
  const pugi::xml_node body = reply.first_child ().next_sibling ();
  const std::string_view name = body.name ();
  if (name == "metadata")
    return take_metadata (body);
  std::string text;
  ThinClip clip;
  if (name == "clipid")
    text = Fields (body).text ("ClipID");
  else if (name == "clipinfo")
    clip = read_clip (body.first_child ());
  Pending *pending = nullptr;
  {
    const std::lock_guard hold (pending_lock_);
    const auto found = pending_.find (number);
    if (found == pending_.end ())
      return;
    pending = found->second;
    if (name != "clipid")
      pending_.erase (found);
  }
  if (name == "clipid")
    return static_cast<void> (pending->names.push_back (std::move (text)));
  pending->clip = std::move (clip);
  sem_post (&pending->answered);
}

void Thin::post_notice (uint32_t kind, uint32_t channel) {
  {
    const std::lock_guard hold (notices_lock_);
    if (notice_waits_[kind][channel])
      return;
    notice_waits_[kind][channel] = true;
    notices_.emplace_back (kind, channel);
  }
  noticed_.notify_all ();
}

void Thin::on_speed (pugi::xml_node body) {
  Fields fields (body);
  const uint32_t channel = fields.channel ();
  const double speed = std::strtod (fields.text ("Speed"), nullptr);
  {
    const std::lock_guard hold (channels_[channel].lock);
    channels_[channel].speed = speed;
  }
  post_notice (1, channel);
}

void Thin::on_status (pugi::xml_node body) {
  Fields fields (body);
  const uint32_t channel = fields.channel ();
  const uint32_t status = fields.word ("ChannelStatus", states);
  const std::optional<std::string> clip = fields.maybe_text ("ClipID");
  {
    const std::lock_guard hold (channels_[channel].lock);
    channels_[channel].status = status;
  }
  post_notice (2, channel);
}

void Thin::on_clip_changed (pugi::xml_node body) {
  std::string clip = Fields (body).text ("ClipID");
  const std::lock_guard hold (clips_lock_);
  if (added_.contains (clip))
    return;
  deleted_.erase (clip);
  changed_.insert (std::move (clip));
}

void Thin::on_timecode (pugi::xml_node body) {
  Fields fields (body);
  const uint32_t channel = fields.channel ();
  ThinPosition place;
  place.position = fields.number<uint32_t> ("ClipPosition");
  place.display = read_timecode (fields.node ("DisplayTimecode"));
  place.input = read_timecode (fields.node ("InputTimecode"));
  {
    const std::lock_guard hold (channels_[channel].lock);
    channels_[channel].place = place;
  }
  post_notice (3, channel);
}

void Thin::on_information (pugi::xml_node body) {
  Fields fields (body);
  const uint32_t channel = fields.channel ();
  Fields f (fields.node ("ChannelInformation"));
  ThinChannelInformation information;
  information.clip = f.text ("ClipID");
  information.length = f.maybe_number<uint32_t> ("ClipLength");
  information.interp = f.maybe_word ("Interp", interps);
  information.loop = f.maybe_word ("Loop", loops);
  information.loop_in = f.maybe_number<uint32_t> ("LoopIn");
  information.loop_out = f.maybe_number<uint32_t> ("LoopOut");
  information.playback = f.maybe_word ("Playback", playbacks);
  information.angle_count = f.maybe_number<uint32_t> ("AngleCount");
  information.angle = f.maybe_number<uint32_t> ("Angle");
  information.audio_tracks = f.maybe_number<uint32_t> ("AudioTrackCount");
  if (const pugi::xml_node ee = f.node ("EEStatus")) {
    Fields of_ee (ee);
    const uint32_t mask = of_ee.number<uint32_t> ("SonyEditMask");
    information.ee = {mask, of_ee.truth ("AutoEE")};
  }
  information.precues = f.maybe_number<uint32_t> ("PrecueCount");
  information.steal_status = f.maybe_word ("StealStatus", steals);
  information.in_transition = f.maybe_truth ("TransitionInProgress");
  information.speed = std::strtod (f.text ("NaturalSpeed"), nullptr);
  {
    const std::lock_guard hold (channels_[channel].lock);
    channels_[channel].information = std::move (information);
  }
  for (uint32_t kind = 4; kind != 9; ++kind)
    post_notice (kind, channel);
}

void Thin::take_metadata (pugi::xml_node body) {
  Fields fields (body);
  const std::string folder = fields.text ("MetadataDatabase"), prefix = fields.text ("MetadataPrefix");
  std::list<std::pair<std::string, std::string>> items;
  for (pugi::xml_node item : fields.node ("MetadataList")) {
    Fields of_item (item);
    const char *key = of_item.text ("Key");
    items.emplace_back (prefix + key, of_item.text ("Value"));
  }
  if (folder.empty ())
    return;
  const std::lock_guard hold (changes_lock_);
  for (auto &[key, value] : items)
    if (const auto [at, is_new] = changes_.insert_or_assign (key, std::move (value)); is_new)
      order_.push_back (std::move (key));
  changed_pairs_.notify_all ();
}

} // namespace figures
