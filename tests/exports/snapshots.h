#pragma once

#include "exports/session.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

/// A `clipinfo` body.
/// @param changed contents of fields that every clip has, by tag, in place of the usual ones
/// @param optional further fields, as they are
inline std::string clip_info (const std::map<std::string, std::string> &changed = {},
                              const std::string &optional = "") {
  const std::pair<const char *, const char *> fields[] = {
      {"ClipID", "NEWS0123"},
      {"VideoStandard", "1080_59_94i"},
      {"TrackInfoVector", "<TrackInfo><TrackType>video</TrackType></TrackInfo>"},
      {"Title", "The opener"},
      {"Creator", "Desk 4"},
      {"Project", "Evening"},
      {"Playback", "auto"},
      {"Interp", "auto"},
      {"Loop", "off"},
      {"LoopOut", "90"},
      {"LoopIn", "10"},
      {"ClipLength", "1800"},
      {"TimecodeSource", "zerobased"},
      {"StripeTimecode", "<Valid>false</Valid>"},
      {"ReadOnly", "false"},
  };
  std::string text;
  for (const auto &[tag, usual] : fields) {
    const auto found = changed.find (tag);
    text +=
        "<" + std::string (tag) + ">" + (found != changed.end () ? found->second : usual) + "</" + tag + ">";
  }
  return "<clipinfo><ClipInfo>" + text + optional + "</ClipInfo></clipinfo>";
}

/// A metadata handle of the clip "NEWS0123" that closes itself.
class Snapshot {
public:
  explicit Snapshot (uint32_t connection) {
    EXPECT_EQ (orva_open_clip_metadata (connection, wide ("NEWS0123").c_str (), &handle_), ORVA_OK)
        << last_error ();
  }
  ~Snapshot () { orva_close_clip_metadata (handle_); }
  Snapshot (const Snapshot &) = delete;
  Snapshot &operator= (const Snapshot &) = delete;

  operator uint32_t () const { return handle_; }

private:
  uint32_t handle_ = 0;
};

template <class Value>
Value number_of (uint32_t (*get) (uint32_t, Value *), uint32_t handle) {
  Value value = 77;
  EXPECT_EQ (get (handle, &value), ORVA_OK);
  return value;
}

inline std::string text_of_clip (uint32_t (*get) (uint32_t, OrvaStringBuffer), uint32_t handle,
                                 uint32_t capacity = 256) {
  return filled ([=] (OrvaStringBuffer text) { EXPECT_EQ (get (handle, text), ORVA_OK); }, capacity);
}

inline std::string meta (uint32_t handle, const char *key) {
  return filled ([=] (OrvaStringBuffer text) {
    EXPECT_EQ (orva_clip_get_meta (handle, wide (key).c_str (), text), ORVA_OK);
  });
}

inline std::string metadata_list (const std::vector<std::pair<std::string, std::string>> &pairs) {
  std::string text;
  for (const auto &[key, value] : pairs)
    text += "<Metadata><Key>" + key + "</Key><Value>" + value + "</Value></Metadata>";
  return "<MetadataList>" + text + "</MetadataList>";
}

/// All keys of a snapshot, each with a blank behind it.
inline std::string keys (uint32_t handle) {
  uint32_t list = 0;
  EXPECT_EQ (orva_clip_open_metakeys (handle, &list), ORVA_OK);
  std::string text;
  for (std::string key = text_of_clip (orva_get_metakey, list); !key.empty ();
       key = text_of_clip (orva_get_metakey, list))
    text += key + " ";
  EXPECT_EQ (orva_close_metakeys (list), ORVA_OK);
  return text;
}
