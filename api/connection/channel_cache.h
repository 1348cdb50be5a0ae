#pragma once

#include "api/basics/mutex.h"
#include "api/connection/listplay_state.h"
#include "base/fixed.h"
#include "schema/members.h"
#include "schema/records.h"

#include <atomic>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

/// A member of the enumeration ChannelReportType.
consteval uint32_t channel_report_type (std::string_view kind) {
  return member (QUILL3::Enumeration::ChannelReportType, kind);
}

/// A value that one thread sets and others read, under a lock that is held for a copy only.
template <class V>
struct KeptValue {
  ShortMutex lock;
  V value KELVANE_GUARDED_BY (lock){};

  void set (V fresh) {
    const ShortScope hold (lock); // the old value is destroyed after its release
    std::swap (value, fresh);
  }
  template <class Read>
  void read (Read read) {
    const ShortScope hold (lock);
    read (std::as_const (value));
  }
};

/// The same for a small value, without a lock.
template <class V>
requires (std::is_trivially_copyable_v<V> && sizeof (V) <= sizeof (uint64_t)) struct KeptValue<V> {
  std::atomic<V> value{V ()};

  void set (V fresh) { value = fresh; }
  template <class Read>
  void read (Read read) {
    read (value.load ());
  }
};

/// One kind of state of one channel, and what the server has been asked for. Threads: any.
/// @tparam ReportType enumeration ChannelReportType
template <uint32_t ReportType, class V>
struct ChannelItem : KeptValue<V> {
  using Value = V;
  static constexpr uint32_t report_type = ReportType;

  /// The server has accepted the registration and reported a first value. It is registered again on each new
  /// link.
  std::atomic<bool> registered{false};
  /// A first value has been reported. Reports of playlists set the flag of `info`. No report sets the flag of
  /// `listplay`.
  std::atomic<bool> valid{false};
};

/// The state of one channel as the server has reported it last. A lost link leaves it as it is. Its items are
/// independent: two of them may be from different moments.
struct ChannelCache {
  ChannelItem<channel_report_type ("status"), uint32_t> status; ///< enumeration ChannelStatus
  ChannelItem<channel_report_type ("clipid"), AString> clipid;
  ChannelItem<channel_report_type ("speed"), Kelvane::fixed> speed;
  ChannelItem<channel_report_type ("timecode"), uint32_t> position; ///< in its clip, in fields
  ChannelItem<channel_report_type ("info"), QUILL3::ChannelInformation> info;
  ChannelItem<channel_report_type ("listplay"), ListPlayState> listplay;

  /// Calls @p visit with each item in the order of their report types.
  template <class Visit>
  void each_item (Visit visit) {
    visit (status);
    visit (clipid);
    visit (speed);
    visit (position);
    visit (info);
    visit (listplay);
  }
};
