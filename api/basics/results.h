#pragma once

#include "api/basics/mutex.h"
#include "base/astring.h"
#include "orva.h"

#include <cstdint>
#include <map>

/// What an exported function returns: 0 is success, the rest are the codes of orva.h.
using ResultCode = uint32_t;

/// The text that each thread recorded last. The process has one table, made at first use and never destroyed.
/// An entry is never removed: a new thread that receives the number of an old one inherits its text until its
/// own first result. Any thread may call any member; a thread sees only its own entry.
// C6: doc/compatibility.md
class LastErrorTable {
public:
  static LastErrorTable &instance ();

  /// Throws std::bad_alloc when the system cannot make a lock.
  LastErrorTable () = default;
  LastErrorTable (const LastErrorTable &) = delete;
  LastErrorTable &operator= (const LastErrorTable &) = delete;

  /// Puts @p text into the entry of the thread numbered @p thread. Allocates only for a thread's first text.
  void record (uint32_t thread, const AString &text);

  /// The text of that thread, empty when it has none.
  AString text (uint32_t thread) const;

private:
  mutable Mutex lock_;
  std::map<uint32_t, AString> texts_ KELVANE_GUARDED_BY (lock_);
};

/// Records @p text for the calling thread and returns @p code. Every result passes through here, success too.
ResultCode make_result (ResultCode code, const AString &text);

/// Each returns its code and records the text of orva.h that belongs to it.
ResultCode result_ok ();
// C5: doc/compatibility.md
ResultCode result_no_connection ();
ResultCode result_invalid_handle ();
ResultCode result_read_only ();
ResultCode result_timeout ();
ResultCode result_invalid_argument ();
ResultCode result_write_only ();

/// The text that belongs to a code. For code 2 it is the text of an internal error.
const AString &result_text (ResultCode code);

/// Code 2 with a text of its own.
ResultCode result_error (const AString &text);

/// Code 2 with "Internal software error". Never throws: when the text cannot be recorded, only the code says
/// what happened.
ResultCode result_internal_error () noexcept;

/// The calling thread's text, empty when it has had no result yet.
AString last_error_text ();
