#pragma once

#include "api/listplay_state.h"
#include "base/amutex.h"
#include "base/atomic_unsigned.h"
#include "base/fixed.h"
#include "schema/members.h"
#include "schema/records.h"

#include <cstdint>
#include <new>
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

  /// Throws std::bad_alloc when there is no lock to be had.
  ChannelItem () {
    if (!lock.is_valid ())
      throw std::bad_alloc ();
  }

  AMutex lock;
  /// Not 0: the server has accepted the registration and told a first value; each new connection asks again.
  atomic_unsigned registered;
  /// Not 0: a first value counts as told. Reports of lists mark that of `info`; none marks that of
  /// `listplay`.
  atomic_unsigned valid;
  V value KELVANE_GUARDED_BY (lock){};
};

/// Where a channel stands.
struct ChannelPosition {
  uint32_t position = 0;              ///< in fields
  QUILL3::Timecode DisplayTimecode{}; ///< no export reads the timecodes
  QUILL3::Timecode InputTimecode{};
};

/// The state of one channel as the server's reports tell it. A lost connection leaves it as it is. Its items
/// are independent: two of them may be from different moments.
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
