#pragma once

#include "api/basics/mutex.h"
#include "base/astring.h"
#include "schema/members.h"

#include <atomic>
#include <cstdint>
#include <set>
#include <string_view>

/// Names of clips or directories that the server has reported as added, changed or deleted, until a caller
/// takes them. Directories are never reported as changed. A name is in one of the three sets at most. Names
/// are taken in the order of their characters. An empty name is ignored. Any thread may call any member.
// C36, C37: doc/compatibility.md
class NameChanges {
public:
  void added (const AString &name);
  /// A name that was added, and that nobody has taken yet, stays added.
  void changed (const AString &name);
  void deleted (const AString &name);

  /// Each returns the empty text when there is no such name.
  AString take_added ();
  AString take_changed ();
  AString take_deleted ();

private:
  using Names = std::set<AString>;

  static AString take_first (Names &names);

  Mutex lock_;
  Names added_ KELVANE_GUARDED_BY (lock_);
  Names changed_ KELVANE_GUARDED_BY (lock_);
  Names deleted_ KELVANE_GUARDED_BY (lock_);
};

/// A member of the enumeration ReportType.
consteval uint32_t report_type (std::string_view kind) {
  return member (QUILL3::Enumeration::ReportType, kind);
}

/// One kind of report that callers may ask for, and the names that were reported.
struct TrackedNames {
  const uint32_t report_type;          ///< enumeration ReportType
  std::atomic<bool> registered{false}; ///< the server has accepted it; sent again on each new link
  NameChanges changes{};
};
