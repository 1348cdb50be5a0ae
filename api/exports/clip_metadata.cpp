// Exports: metadata handles, and the free-form pairs of clips behind them. The pairs keep the order that the
// server sent; a key may be there twice, and then the first one counts.
#include "api/basics/typehelp.h"
#include "api/exports/clip_snapshot.h"
#include "api/exports/list_names.h"

#include <algorithm>

using namespace typehelp;
using QUILL3::ClipAttrChange;
using QUILL3::ClipInfo;
using QUILL3::Metadata;
using QUILL3::MetadataList;

namespace {

/// The first pair with that key, the end when there is none.
// C48: doc/compatibility.md
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

/// The pairs of a snapshot, to be changed; an absent list is made, empty.
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

uint32_t orva_open_clip_metadata (uint32_t connection, const orva_char *clip, uint32_t *handle) {
  return on_connection (connection, [&] (const Connection &self) {
    ClipSnapshot snapshot{.connection = connection, .record = {}};
    const ResultCode code =
        ask (self, command::get_clip_info{.ClipID = text_argument (clip)}, snapshot.record);
    if (code == ORVA_OK && handle != nullptr)
      *handle = MetaDataHandles::instance ().open (std::move (snapshot));
    return code;
  });
}

// C10: doc/compatibility.md
uint32_t orva_close_clip_metadata (uint32_t handle) {
  return guarded ([=] {
    MetaDataHandles::instance ().close (handle);
    return result_ok ();
  });
}

// C11: doc/compatibility.md
uint32_t orva_clip_has_meta (uint32_t handle, const orva_char *key, uint32_t *has) {
  if (has != nullptr)
    *has = 0;
  return read_clip (handle, [&] (const ClipInfo &clip) {
    if (has != nullptr)
      *has = value_of_key (clip, text_argument (key)).present ? 1 : 0;
  });
}

// C11: doc/compatibility.md
uint32_t orva_clip_get_meta (uint32_t handle, const orva_char *key, OrvaStringBuffer value) {
  return guarded ([&] {
    AString found;
    const ResultCode code = read_clip (handle, [&] (const ClipInfo &clip) {
      found = value_of_key (clip, text_argument (key)).value_or (AString ());
    });
    fill_string_buffer (found, value);
    return code;
  });
}

uint32_t orva_clip_set_meta (uint32_t handle, const orva_char *key, const orva_char *value) {
  return change_clip (
      handle,
      [=] (ClipAttrChange &change) {
        change.MetadataList = MetadataList{{.Key = text_argument (key), .Value = text_argument (value)}};
      },
      [] (ClipInfo &clip, const ClipAttrChange &change) {
        keep_pair (clip, change.MetadataList.value.front ());
      });
}

uint32_t orva_clip_delete_meta (uint32_t handle, const orva_char *key) {
  return change_clip (
      handle, [=] (ClipAttrChange &change) { change.KeyList = QUILL3::KeyList{text_argument (key)}; },
      [] (ClipInfo &clip, const ClipAttrChange &change) {
        forget_key (clip, change.KeyList.value.front ());
      });
}

uint32_t orva_clip_open_metakeys (uint32_t handle, uint32_t *list) {
  return read_clip (handle, [=] (const ClipInfo &clip) {
    if (list == nullptr)
      return;
    NameList keys;
    if (clip.MetadataList.present)
      for (const Metadata &pair : clip.MetadataList.value)
        keys.append (pair.Key);
    *list = ListHandles::instance ().open (std::move (keys));
  });
}

uint32_t orva_get_metakey (uint32_t list, OrvaStringBuffer key) {
  return take_list_name (list, key);
}

// C10: doc/compatibility.md
uint32_t orva_close_metakeys (uint32_t list) {
  return guarded ([=] {
    ListHandles::instance ().close (list);
    return result_ok ();
  });
}
