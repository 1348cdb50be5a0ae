#pragma once

#include "api/basics/mutex.h"
#include "api/connection/listplay_state.h"
#include "base/fixed.h"
#include "schema/members.h"
#include "schema/records.h"

#include <atomic>
#include <cstdint>
#include <string_view>

/// A member of the enumeration ChannelReportType.
consteval uint32_t channel_report_type (std::string_view kind) {
  return member (QUILL3::Enumeration::ChannelReportType, kind);
}

/// One kind of state of one channel, and what the server has been asked for. Threads: flags from any thread;
/// the value under the lock, which is held for a copy only.
/// @tparam ReportType enumeration ChannelReportType
template <uint32_t ReportType, class V>
struct ChannelItem {
  using Value = V;
  static constexpr uint32_t report_type = ReportType;

  Mutex lock;
  /// The server has accepted the registration and reported a first value. It is registered again on each new
  /// link.
  std::atomic<bool> registered{false};
  /// A first value has been reported. Reports of playlists set the flag of `info`. No report sets the flag of
  /// `listplay`.
  std::atomic<bool> valid{false};
  V value KELVANE_GUARDED_BY (lock){};
};

/// The position of a channel in its clip.
struct ChannelPosition {
  uint32_t position = 0;              ///< in fields
  QUILL3::Timecode DisplayTimecode{}; ///< no export reads the timecodes
  QUILL3::Timecode InputTimecode{};
};

/// The state of one channel as the server has reported it last. A lost link leaves it as it is. Its items are
/// independent: two of them may be from different moments.
struct ChannelCache {
  ChannelItem<channel_report_type ("status"), uint32_t> status; ///< enumeration ChannelStatus
  ChannelItem<channel_report_type ("clipid"), AString> clipid;
  ChannelItem<channel_report_type ("speed"), Kelvane::fixed> speed;
  ChannelItem<channel_report_type ("timecode"), ChannelPosition> timecode;
  ChannelItem<channel_report_type ("info"), QUILL3::ChannelInformation> info;
  ChannelItem<channel_report_type ("listplay"), ListPlayState> listplay;

  /// Calls @p visit with each item in the order of their report types.
  template <class Visit>
  void each_item (Visit visit) {
    visit (status);
    visit (clipid);
    visit (speed);
    visit (timecode);
    visit (info);
    visit (listplay);
  }
};
