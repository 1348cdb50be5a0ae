#pragma once

#include "api/basics/mutex.h"
#include "base/astring.h"
#include "orva.h"

#include <atomic>
#include <cstdint>
#include <map>

/// What an exported function returns: 0 is success, the rest are the codes of orva.h.
using ResultCode = uint32_t;

/// The text that a thread has recorded last, empty at first. Any thread may call any member.
class LastText {
public:
  /// Records a text that is never destroyed and never changes. Takes no lock when it replaces such a text.
  void record_constant (const AString &text) noexcept;
  /// Records a copy of @p text.
  void record (const AString &text);
  AString text () const;

private:
  void set_own (AString text);

  std::atomic<const AString *> constant_{
      nullptr}; ///< null while `own_` is the text, which is empty otherwise
  mutable ShortMutex lock_;
  AString own_ KELVANE_GUARDED_BY (lock_);
};

/// The text that each thread recorded last. The process has one table, made at first use and never destroyed.
/// An entry is never removed: a new thread that receives the number of an old one inherits its text until its
/// own first result. Any thread may call any member; a thread sees only its own entry.
// C6: doc/compatibility.md
class LastErrorTable {
public:
  static LastErrorTable &instance ();

  LastErrorTable () = default;
  LastErrorTable (const LastErrorTable &) = delete;
  LastErrorTable &operator= (const LastErrorTable &) = delete;

  /// The entry of the thread numbered @p thread, which never moves. Allocates only at the first call for a
  /// number.
  LastText &of (uint32_t thread);

  void record (uint32_t thread, const AString &text) { of (thread).record (text); }
  /// The text of that thread, empty when it has none.
  AString text (uint32_t thread) { return of (thread).text (); }

private:
  ShortMutex lock_;
  std::map<uint32_t, LastText> texts_ KELVANE_GUARDED_BY (lock_);
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
