#pragma once

#include "api/listplay_state.h"
#include "base/amutex.h"
#include "base/atomic_unsigned.h"
#include "base/fixed.h"
#include "schema/records.h"

#include <cstdint>
#include <new>

/// The kinds of channel reports that the library asks for: members of the enumeration ChannelReportType.
enum class ChannelReport : uint32_t {
  status = 0,
  clipid = 1,
  speed = 2,
  timecode = 3,
  info = 4,
  listplay = 5
};

/// One kind of state of one channel, and what the server has been asked for. Threads: flags from any thread;
/// the value under the lock, which is held for a copy only.
template <ChannelReport Report, class V>
struct ChannelItem {
  using Value = V;
  static constexpr uint32_t report_type = static_cast<uint32_t> (Report);

  /// Throws std::bad_alloc when there is no lock to be had.
  ChannelItem () {
    if (!lock.is_valid ())
      throw std::bad_alloc ();
  }

  AMutex lock;
  atomic_unsigned registered; ///< not 0: the report is registered, now and on each new connection
  atomic_unsigned valid;      ///< not 0: a report of this kind has come
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
  ChannelItem<ChannelReport::status, uint32_t> status; ///< enumeration ChannelStatus
  ChannelItem<ChannelReport::clipid, AString> clipid;
  ChannelItem<ChannelReport::speed, Kelvane::fixed> speed;
  ChannelItem<ChannelReport::timecode, ChannelPosition> timecode;
  ChannelItem<ChannelReport::info, QUILL3::ChannelInformation> info;
  ChannelItem<ChannelReport::listplay, ListPlayState> listplay;

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
