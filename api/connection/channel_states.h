#pragma once

#include "api/basics/typehelp.h"
#include "api/connection/channel_cache.h"
#include "api/connection/notifier.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <utility>

/// The state of all channels of one connection, filled by reports and read by callers, and the notices of
/// what has changed. Any thread may call any member.
class ChannelStates {
public:
  /// Number of channels that callers know. Reports of others are ignored.
  static constexpr uint32_t count = typehelp::exported_channels;

  /// @param channel below `count`
  ChannelCache &operator[] (uint32_t channel) { return channels_[channel]; }

  Notifier &notices () { return notices_; }

  /// Keeps a value that the server has reported.
  /// @param notices the kinds of notice to raise, whether the value has changed or not
  template <class Item>
  void keep (uint32_t channel, Item ChannelCache::*item, typename Item::Value value,
             std::initializer_list<uint32_t> notices) {
    if (channel >= count)
      return;
    Item &kept = channels_[channel].*item;
    kept.set (std::move (value));
    set_valid (kept.valid);
    for (const uint32_t kind : notices)
      notices_.post (kind, channel);
  }

  /// Calls @p change with the playlist of a channel, to change it as the server has reported. This marks the
  /// value of `info` as valid, and not the playlist.
  // C28: doc/compatibility.md
  template <class Change>
  void change_list (uint32_t channel, Change change) {
    if (channel >= count)
      return;
    ChannelCache &cache = channels_[channel];
    {
      const ShortScope hold (cache.listplay.lock);
      change (cache.listplay.value);
    }
    set_valid (cache.info.valid);
  }

  /// Waits for a first value, which the server usually sends right after the registration. The wait ends
  /// after five to six seconds, counted in whole seconds of the system's clock. @return whether there is a
  /// value.
  // C27: doc/compatibility.md
  bool wait_for_first_value (const std::atomic<bool> &valid);

  /// Calls @p visit with the channel and the report type of each item that is registered.
  template <class Visit>
  void each_registered (Visit visit) {
    for (uint32_t channel = 0; channel != count; ++channel)
      channels_[channel].each_item ([&] (auto &item) {
        if (item.registered)
          visit (channel, item.report_type);
      });
  }

private:
  void set_valid (std::atomic<bool> &valid);

  std::array<ChannelCache, count> channels_;
  Notifier notices_;
  Mutex first_value_lock_; ///< for the waits only; the flags are atomic
  Condition first_value_;
};
