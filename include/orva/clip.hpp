/**
 * @file orva/clip.hpp
 * Operations on clips and virtual clips, and the values that describe a clip.
 */
#ifndef ORVA_CLIP_HPP
#define ORVA_CLIP_HPP

#include "call.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orva {

/** The first value of a timecode, and how it counts. */
struct TimecodeStart {
  Position start;
  Counting counting = Counting::drop_frame;
};

/** Pairs of a key and a value, in the order of the server. Both are free text. */
using Metadata = std::vector<std::pair<std::string, std::string>>;

/** Everything that the server knows about a clip, at one moment. A value that the server left out is 0 or
 * empty. */
struct ClipInfo {
  Standard standard = Standard::i1080_60; /**< also stands for each standard that the library does not know */
  Tracks tracks = Tracks::none;
  std::string title;
  std::string creator;
  std::string project;
  Playback playback = Playback::field;
  Repeat repeat = Repeat::off;
  Position length;
  Position loop_in;
  Position loop_out;
  Position trim_start;
  Position trim_end;
  bool read_only = false;
  TimecodeSource timecode_source = TimecodeSource::zero_based;
  TimecodeStart timecode;          /**< of the first frame, from the timecode source */
  TimecodeStart recorded_timecode; /**< recorded with the first frame */
  std::string uuid;
  std::string parent_uuid;
  /* Stamps: numbers of the server that grow with time. The server chooses their unit. */
  std::uint64_t last_loaded = 0;
  std::uint64_t last_unloaded = 0;
  std::uint64_t last_played = 0;
  std::uint64_t metadata_last_edited = 0;
  std::uint64_t content_last_edited = 0;
  Metadata metadata;
};

/** The changes that edit() makes. A member without a value is not changed. */
struct ClipEdit {
  std::optional<std::string> title{};
  std::optional<std::string> creator{};
  std::optional<std::string> project{};
  std::optional<Playback> playback{};
  std::optional<Repeat> repeat{};
  std::optional<Position> loop_in{};
  std::optional<Position> loop_out{};
  std::optional<Position> trim_start{};  /**< an odd number is lowered by 1 */
  std::optional<Position> trim_end{};    /**< an odd number is lowered by 1 */
  std::optional<TimecodeStart> stripe{}; /**< the new timecode; it also becomes the timecode source */
  std::optional<TimecodeSource> timecode_source{};
  /** Keys and their new values. A key without a value is erased. */
  std::vector<std::pair<std::string, std::optional<std::string>>> metadata{};
};

/** How create() creates a clip. */
struct Create {
  Tracks tracks = Tracks::all;
  std::optional<Position> length{}; /**< without a value the server chooses */
  std::optional<Channel> channel{}; /**< creates the clip for recording on this channel */
};

namespace detail {

struct ClipData {
  Context context;
  std::string name;
};

/** A metadata handle of the library. The destructor closes it. */
class Snapshot {
public:
  Snapshot (std::uint32_t server, const orva_char *clip) {
    must (orva_open_clip_metadata (server, clip, &handle_));
  }
  ~Snapshot () { orva_close_clip_metadata (handle_); }
  Snapshot (const Snapshot &) = delete;
  Snapshot &operator= (const Snapshot &) = delete;
  operator std::uint32_t () const { return handle_; }

private:
  std::uint32_t handle_ = 0;
};

/** Reads the names of a list of the library. It does not close the list. */
class NameList {
public:
  using Next = std::uint32_t (*) (std::uint32_t, OrvaStringBuffer);
  NameList (std::uint32_t handle, Next next) : handle_ (handle), next_ (next) {}

  std::vector<std::string> all () const {
    std::vector<std::string> names;
    const std::unique_ptr<orva_char[]> units (new orva_char[longest_text + 4]);
    for (;;) {
      units[0] = 0;
      must (next_ (handle_, OrvaStringBuffer{units.get (), longest_text + 4}));
      if (units[0] == 0)
        return names;
      names.push_back (narrow (units.get ()));
    }
  }

private:
  std::uint32_t handle_;
  Next next_;
};

/** Closes a handle in its destructor. */
template <class Close>
class Closing {
public:
  Closing (std::uint32_t handle, Close close) : handle_ (handle), close_ (close) {}
  ~Closing () { close_ (handle_); }
  Closing (const Closing &) = delete;
  Closing &operator= (const Closing &) = delete;

private:
  std::uint32_t handle_;
  Close close_;
};

/** Opens a list, reads all names and closes it. */
template <class Open, class Close>
std::uint32_t read_names (Open open, NameList::Next next, Close close, std::vector<std::string> &names) {
  std::uint32_t handle = 0;
  must (open (&handle));
  const Closing<Close> closing (handle, close);
  names = NameList (handle, next).all ();
  return ORVA_OK;
}

inline std::uint32_t number_of (std::uint32_t (*get) (std::uint32_t, std::uint32_t *), std::uint32_t handle) {
  std::uint32_t number = 0;
  must (get (handle, &number));
  return number;
}
inline std::uint64_t stamp_of (std::uint32_t (*get) (std::uint32_t, std::uint64_t *), std::uint32_t handle) {
  std::uint64_t number = 0;
  must (get (handle, &number));
  return number;
}
inline std::string text_of (std::uint32_t (*get) (std::uint32_t, OrvaStringBuffer), std::uint32_t handle) {
  std::string text;
  must (read_text ([=] (OrvaStringBuffer buffer) { return get (handle, buffer); }, text));
  return text;
}
inline TimecodeStart start_of (std::uint32_t (*get) (std::uint32_t, std::uint32_t *, std::uint32_t *),
                               std::uint32_t handle) {
  std::uint32_t start = 0, counting = 0;
  must (get (handle, &start, &counting));
  return {start, static_cast<Counting> (counting)};
}
/** The value of a key, or no value when there is no such key. */
inline std::optional<std::string> value_of (std::uint32_t handle, const orva_char *key) {
  std::uint32_t has = 0;
  must (orva_clip_has_meta (handle, key, &has));
  if (has == 0)
    return {};
  std::string value;
  must (read_text ([=] (OrvaStringBuffer text) { return orva_clip_get_meta (handle, key, text); }, value));
  return value;
}

inline Metadata metadata_of (std::uint32_t handle) {
  std::vector<std::string> keys;
  read_names ([=] (std::uint32_t *list) { return orva_clip_open_metakeys (handle, list); }, orva_get_metakey,
              orva_close_metakeys, keys);
  Metadata pairs;
  for (std::string &key : keys) {
    const Wide units (key);
    std::string value = value_of (handle, units.c ()).value_or ("");
    pairs.emplace_back (std::move (key), std::move (value));
  }
  return pairs;
}

inline ClipInfo info_of (std::uint32_t handle) {
  ClipInfo info;
  info.standard = static_cast<Standard> (number_of (orva_clip_video_standard, handle));
  info.tracks = static_cast<Tracks> (number_of (orva_get_tracks, handle));
  info.title = text_of (orva_clip_title, handle);
  info.creator = text_of (orva_clip_creator, handle);
  info.project = text_of (orva_clip_project, handle);
  info.playback = static_cast<Playback> (number_of (orva_clip_playback, handle));
  info.repeat = static_cast<Repeat> (number_of (orva_clip_repeat, handle));
  info.length = number_of (orva_clip_length, handle);
  info.loop_in = number_of (orva_clip_loop_in_point, handle);
  info.loop_out = number_of (orva_clip_loop_out_point, handle);
  info.trim_start = number_of (orva_clip_trim_start, handle);
  info.trim_end = number_of (orva_clip_trim_end, handle);
  info.read_only = number_of (orva_clip_is_readonly, handle) != 0;
  info.timecode_source = static_cast<TimecodeSource> (number_of (orva_clip_timecode_source, handle));
  info.timecode = start_of (orva_clip_timecode_stripe, handle);
  info.recorded_timecode = start_of (orva_clip_recorded_timecode0, handle);
  info.uuid = text_of (orva_clip_uuid, handle);
  info.parent_uuid = text_of (orva_clip_parent_uuid, handle);
  info.last_loaded = stamp_of (orva_clip_last_loaded, handle);
  info.last_unloaded = stamp_of (orva_clip_last_unloaded, handle);
  info.last_played = stamp_of (orva_clip_last_played, handle);
  info.metadata_last_edited = stamp_of (orva_clip_metadata_last_edited, handle);
  info.content_last_edited = stamp_of (orva_clip_content_last_edited, handle);
  info.metadata = metadata_of (handle);
  return info;
}

/** The changes of a ClipEdit in the order of its members. Each is checked and bound to its C function. */
class EditSteps {
public:
  explicit EditSteps (const ClipEdit &edit) {
    add (orva_set_clip_title, edit.title);
    add (orva_set_clip_creator, edit.creator);
    add (orva_set_clip_project, edit.project);
    add (orva_set_clip_playback, edit.playback);
    add (orva_set_clip_repeat, edit.repeat);
    add (orva_set_clip_loop_in_point, edit.loop_in);
    add (orva_set_clip_loop_out_point, edit.loop_out);
    add (orva_set_clip_trim_start, edit.trim_start);
    add (orva_set_clip_trim_end, edit.trim_end);
    if (edit.stripe)
      step (orva_set_clip_timecode_stripe, edit.stripe->start, edit.stripe->counting);
    add (orva_set_clip_timecode_source, edit.timecode_source);
    for (const auto &[key, value] : edit.metadata) {
      if (value)
        step (orva_clip_set_meta, std::string_view (key), std::string_view (*value));
      else
        step (orva_clip_delete_meta, std::string_view (key));
    }
  }

  const char *bad () const { return bad_; }
  const EditSteps &c () const { return *this; }
  bool empty () const { return steps_.empty (); }
  void run (std::uint32_t handle) const {
    for (const auto &each : steps_)
      must (each (handle));
  }

private:
  template <class F, class... Values>
  void step (F function, const Values &...values) {
    prepared (function, checked (values)...);
  }
  template <class F, class... Values>
  void prepared (F function, Values... values) {
    if (bad_ == nullptr)
      bad_ = first_bad (values...);
    steps_.push_back ([=] (std::uint32_t handle) { return function (handle, values.c ()...); });
  }
  template <class F, class T>
  void add (F function, const std::optional<T> &value) {
    if (value)
      step (function, *value);
  }
  template <class F>
  void add (F function, const std::optional<std::string> &value) {
    if (value)
      step (function, std::string_view (*value));
  }

  std::vector<std::function<std::uint32_t (std::uint32_t)>> steps_;
  const char *bad_ = nullptr;
};

} // namespace detail

/** Operations on one clip: `server.clip ("NEWS/OPENER").info ()`. */
template <class Form>
class ClipControl : public Operations<ClipControl, Form, detail::ClipData> {
  using Base = Operations<ClipControl, Form, detail::ClipData>;

public:
  using Base::Base;
  template <class T>
  using of = typename Base::template of<T>;

  const std::string &name () const { return this->data_.name; }

  /** Whether the clip exists. */
  of<bool> exists () const {
    const auto operation = [] (std::uint32_t server, bool &value, const orva_char *clip) {
      std::uint32_t exists = 0;
      const std::uint32_t code = orva_clip_exists (server, clip, &exists);
      value = exists != 0;
      return code;
    };
    return this->template ask<bool> (operation, clip ());
  }
  /** Renames the clip. This object keeps the old name. */
  of<void> rename (std::string_view to) const { return this->send (orva_rename_clip, clip (), to); }
  /** Deletes the clip. */
  of<void> erase () const { return this->send (orva_delete_clip, clip ()); }
  /** Creates the clip. It is empty. With a channel and no length, the length 0 is sent. */
  of<void> create (const Create &how = {}) const {
    if (how.channel)
      return this->send (orva_create_clip3, *how.channel, clip (), how.tracks, how.length.value_or (0));
    if (how.length)
      return this->send (orva_create_clip2, clip (), how.tracks, *how.length);
    return this->send (orva_create_clip1, clip (), how.tracks);
  }
  /** Creates the clip. It shares the content of another clip, at a camera angle if there is one. */
  of<void> create_child_of (std::string_view parent, std::optional<Angle> angle = {}) const {
    return angle ? this->send (orva_create_child_clip2, clip (), parent, *angle)
                 : this->send (orva_create_child_clip1, clip (), parent);
  }
  /** Would protect the clip. In this version of the library it fails with Kind::unsupported. */
  of<void> protect () const { return this->template ask_library<void> (orva_set_readonly, clip ()); }
  /** Would remove the protection. In this version of the library it fails with Kind::unsupported. */
  of<void> unprotect () const { return this->template ask_library<void> (orva_unset_readonly, clip ()); }

  /** Everything that the server knows about the clip, in one round trip. The server refuses it for a clip
   * that does not exist. */
  of<ClipInfo> info () const {
    const auto operation = [] (std::uint32_t server, ClipInfo &info, const orva_char *clip) -> std::uint32_t {
      info = detail::info_of (detail::Snapshot (server, clip));
      return ORVA_OK;
    };
    return this->template ask<ClipInfo> (operation, clip ());
  }
  /** The value of a key of the metadata, or no value when there is no such key. One round trip. */
  of<std::optional<std::string>> meta (std::string_view key) const {
    using Value = std::optional<std::string>;
    const auto operation = [] (std::uint32_t server, Value &value, const orva_char *clip,
                               const orva_char *name) -> std::uint32_t {
      value = detail::value_of (detail::Snapshot (server, clip), name);
      return ORVA_OK;
    };
    return this->template ask<Value> (operation, clip (), key);
  }

  /**
   * Changes attributes and metadata. Costs one round trip, and one more for each change. When a change fails,
   * the changes before it are not undone and those after it are not sent.
   */
  of<void> edit (const ClipEdit &edit) const {
    const auto operation = [] (std::uint32_t server, const orva_char *clip,
                               const detail::EditSteps &steps) -> std::uint32_t {
      if (!steps.empty ())
        steps.run (detail::Snapshot (server, clip));
      return ORVA_OK;
    };
    return this->template ask<void> (operation, clip (), detail::EditSteps (edit));
  }
  /** Sets the value of a key. A new key goes to the end. Two round trips. */
  of<void> set_meta (std::string_view key, std::string_view value) const {
    ClipEdit change;
    change.metadata.emplace_back (key, std::string (value));
    return edit (change);
  }
  /** Erases a key and its value. Two round trips. */
  of<void> erase_meta (std::string_view key) const {
    ClipEdit change;
    change.metadata.emplace_back (key, std::nullopt);
    return edit (change);
  }

private:
  std::string_view clip () const { return this->data_.name; }
};

/** A piece of a clip, and its place in a virtual clip. */
struct Segment {
  std::string clip{};
  Position clip_position{}; /**< where the piece starts in its clip */
  Tracks tracks = Tracks::all;
  Position position{}; /**< where the piece starts in the virtual clip */
  Position length{};
  std::optional<double> speed{};
};

/** A range of a virtual clip. */
struct Stretch {
  Tracks tracks = Tracks::all;
  Position position{};
  Position length{};
};

/**
 * Operations on a virtual clip, which the server builds from pieces of other clips. Call them in this order:
 * create(), begin_changes(), any number of changes, end_changes(), load_virtual() of a channel, and free()
 * when the virtual clip is no longer needed. The library does not check this order.
 */
template <class Form>
class VirtualClipControl : public Operations<VirtualClipControl, Form, detail::ClipData> {
  using Base = Operations<VirtualClipControl, Form, detail::ClipData>;

public:
  using Base::Base;
  template <class T>
  using of = typename Base::template of<T>;

  const std::string &name () const { return this->data_.name; }

  /** Creates the virtual clip. It is empty. */
  of<void> create (Position length) const { return this->send (orva_vclip_create, vclip (), length); }
  /** Frees the virtual clip. */
  of<void> free () const { return this->send (orva_vclip_free, vclip ()); }
  /** Opens the virtual clip for changes. */
  of<void> begin_changes () const { return this->send (orva_vclip_modification_start, vclip ()); }
  /** Ends the changes. */
  of<void> end_changes () const { return this->send (orva_vclip_modification_end, vclip ()); }

  /** Puts a piece of a clip into the virtual clip. */
  of<void> add (const Segment &piece) const {
    const std::string_view clip = piece.clip;
    return piece.speed ? this->send (orva_vclip_add_segment2, vclip (), clip, piece.clip_position,
                                     piece.tracks, piece.position, piece.length, *piece.speed)
                       : this->send (orva_vclip_add_segment1, vclip (), clip, piece.clip_position,
                                     piece.tracks, piece.position, piece.length);
  }
  /** Clears a range. */
  of<void> clear (const Stretch &stretch) const {
    return this->send (orva_vclip_clear_segment, vclip (), stretch.tracks, stretch.position, stretch.length);
  }
  /** Moves all pieces from a position on. @param distance negative moves them towards the start */
  of<void> ripple (Position from, Position distance, Tracks tracks = Tracks::all) const {
    return this->send (orva_vclip_ripple, vclip (), tracks, from, detail::Distance{distance});
  }
  /** Selects the tracks that are played. */
  of<void> enable (Tracks tracks) const { return this->send (orva_vclip_track_enable, vclip (), tracks); }
  /** Configures tracks like those of a clip. */
  of<void> configure_as (std::string_view clip, Tracks tracks = Tracks::all) const {
    return this->send (orva_vclip_cfg_tracks, vclip (), clip, tracks);
  }

private:
  std::string_view vclip () const { return this->data_.name; }
};

} // namespace orva

#endif
