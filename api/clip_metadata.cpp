#include "api/clip_metadata.h"

#include "api/clip_attributes.h"
#include "api/list_handles.h"

#include <algorithm>

using namespace typehelp;
using QUILL3::ClipAttrChange;
using QUILL3::ClipInfo;
using QUILL3::Metadata;
using QUILL3::MetadataList;

namespace {

/// The first pair with that key, the end when there is none.
template <class List>
auto find_key (List &pairs, const AString &key) {
  return std::find_if (pairs.begin (), pairs.end (), [&] (const Metadata &pair) { return pair.Key == key; });
}

/// The value of a key in a snapshot, absent when it is not there.
AOption<AString> value_of_key (const ClipInfo &clip, const AString &key) {
  if (!clip.MetadataList.present)
    return {};
  const MetadataList &pairs = clip.MetadataList.value;
  const auto found = find_key (pairs, key);
  return found == pairs.end () ? AOption<AString> () : AOption<AString> (found->Value);
}

/// The pairs of a snapshot, to be changed; an absent list comes into being, empty.
MetadataList &own_pairs (ClipInfo &clip) {
  if (!clip.MetadataList.present)
    clip.MetadataList = MetadataList ();
  return clip.MetadataList.value;
}

void keep_pair (ClipInfo &clip, const Metadata &pair) {
  MetadataList &pairs = own_pairs (clip);
  const auto found = find_key (pairs, pair.Key);
  if (found == pairs.end ())
    pairs.push_back (pair);
  else
    found->Value = pair.Value;
}

void forget_key (ClipInfo &clip, const AString &key) {
  if (!clip.MetadataList.present)
    return;
  MetadataList &pairs = clip.MetadataList.value;
  const auto found = find_key (pairs, key);
  if (found != pairs.end ())
    pairs.erase (found);
}

} // namespace

ResultCode clip_has_meta (uint32_t handle, const orva_char *key, uint32_t *has) noexcept {
  return guarded ([&] {
    if (has != nullptr)
      *has = 0;
    return read_clip (handle, [&] (const ClipInfo &clip) {
      if (has != nullptr)
        *has = value_of_key (clip, text_argument (key)).present ? 1 : 0;
    });
  });
}

ResultCode clip_get_meta (uint32_t handle, const orva_char *key, OrvaStringBuffer value) noexcept {
  return guarded ([&] {
    AString found;
    const ResultCode code = read_clip (handle, [&] (const ClipInfo &clip) {
      found = present_or_zero (value_of_key (clip, text_argument (key)));
    });
    fill_string_buffer (found, value);
    return code;
  });
}

ResultCode clip_set_meta (uint32_t handle, const orva_char *key, const orva_char *value) noexcept {
  return set_clip_attribute (
      handle,
      [=] (ClipAttrChange &change) {
        change.MetadataList = MetadataList{{.Key = text_argument (key), .Value = text_argument (value)}};
      },
      [] (ClipInfo &clip, const ClipAttrChange &change) {
        keep_pair (clip, change.MetadataList.value.front ());
      });
}

ResultCode clip_delete_meta (uint32_t handle, const orva_char *key) noexcept {
  return set_clip_attribute (
      handle, [=] (ClipAttrChange &change) { change.KeyList = QUILL3::KeyList{text_argument (key)}; },
      [] (ClipInfo &clip, const ClipAttrChange &change) {
        forget_key (clip, change.KeyList.value.front ());
      });
}

ResultCode clip_open_metakeys (uint32_t handle, uint32_t *list) noexcept {
  return read_clip (handle, [=] (const ClipInfo &clip) {
    if (list == nullptr)
      return;
    AStringList keys;
    if (clip.MetadataList.present)
      for (const Metadata &pair : clip.MetadataList.value)
        keys.append (pair.Key);
    *list = ListHandles::instance ().open (std::move (keys));
  });
}
