#pragma once

#include "api/conn_object.h"
#include "api/results.h"
#include "base/amethod.h"
#include "base/astringlist.h"
#include "base/atomic_unsigned.h"
#include "base/bsem.h"

#include <memory>

/// Joins a command, whose callbacks the connection's thread runs, with the thread that waits for its outcome.
/// It is counted: the constructor takes one reference on behalf of the outstanding command, which `finish`
/// drops, and each `CBRef` holds another; the last one deletes it. Threads: one creates and waits; the
/// callback runs on the connection's thread or, when the link is down, on any that finds it so: the caller's
/// own, or that of another caller of this connection. Code and text are written before the semaphore is
/// released and read after the wait.
class OrvaConnObject::CBBaseObject {
public:
  enum class Waiter { none, one };

  CBBaseObject (const CBBaseObject &) = delete;
  CBBaseObject &operator= (const CBBaseObject &) = delete;

  /// The command failed: code 2 with the given text. The number is not kept.
  void cb_error (AString text, uint32_t number);

  /// Waits for the outcome, without a time-out, and records it for the calling thread. An object without a
  /// semaphore gives "OK" at once, and its outcome is never seen.
  ResultCode wait_result ();

  /// The command is over: releases the waiter, takes the command off the connection's count and drops the
  /// command's reference, in this order. The object may be gone on return.
  void finish ();

  QUILL3::callback::error error_callback () { return AMethod::bind (this, &CBBaseObject::cb_error); }

  void increase_reference () { ++references_; }
  void decrease_reference ();

protected:
  /// Throws std::bad_alloc when there is no memory, or no semaphore to be had; nothing is counted then.
  CBBaseObject (ARef<OrvaConnObject> connection, Waiter waiter);
  virtual ~CBBaseObject () = default;

  OrvaConnObject &connection () { return *connection_.get (); }

private:
  const ARef<OrvaConnObject> connection_;
  const std::unique_ptr<bsem> semaphore_; ///< null when nobody waits
  ResultCode code_ = ORVA_OK;
  AString text_;
  atomic_unsigned references_{1};
};

/// A counted pointer to a completion object. Any thread, each its own pointer.
template <class T>
class OrvaConnObject::CBRef {
public:
  explicit CBRef (T *object) : object_ (object) { object_->increase_reference (); }
  CBRef (const CBRef &other) : CBRef (other.object_) {}
  CBRef &operator= (const CBRef &) = delete;
  ~CBRef () { object_->decrease_reference (); }

  T *get () const { return object_; }
  T *operator->() const { return object_; }

private:
  T *const object_;
};

/// For commands that are answered by `ok`.
class OrvaConnObject::CBOkObject : public CBBaseObject {
public:
  explicit CBOkObject (ARef<OrvaConnObject> connection, Waiter waiter = Waiter::one)
      : CBBaseObject (std::move (connection), waiter) {}

  void cb_ok ();
  QUILL3::callback::ok ok_callback () { return AMethod::bind (this, &CBOkObject::cb_ok); }

  unsigned link = 0; ///< which of the connection's links, counted from 1, has brought the `ok`
};

/// Receives whether there is such a clip.
class OrvaConnObject::CBClipExistsObject : public CBBaseObject {
public:
  explicit CBClipExistsObject (ARef<OrvaConnObject> connection)
      : CBBaseObject (std::move (connection), Waiter::one) {}

  void cb_exists (AString clip, bool given);
  QUILL3::callback::clipexists exists_callback () {
    return AMethod::bind (this, &CBClipExistsObject::cb_exists);
  }

  bool exists = false;
};

/// Receives names one by one, until `ok` ends them.
class OrvaConnObject::CBNamesObject : public CBOkObject {
public:
  using CBOkObject::CBOkObject;

  void cb_item (AString name) { names.append (std::move (name)); }
  AFunction<void (AString)> item_callback () { return AMethod::bind (this, &CBNamesObject::cb_item); }

  AStringList names;
};

/// Receives the names of clips.
class OrvaConnObject::CBClipIdsObject : public CBNamesObject {
  using CBNamesObject::CBNamesObject;
};

/// Receives the names of directories.
class OrvaConnObject::CBDirectoryNamesObject : public CBNamesObject {
  using CBNamesObject::CBNamesObject;
};

/// Receives everything about a clip.
class OrvaConnObject::CBClipInfoObject : public CBBaseObject {
public:
  CBClipInfoObject (ARef<OrvaConnObject> connection, uint32_t number)
      : CBBaseObject (std::move (connection), Waiter::one), connection_number (number) {}

  void cb_info (QUILL3::ClipInfo given);
  QUILL3::callback::clipinfo info_callback () { return AMethod::bind (this, &CBClipInfoObject::cb_info); }

  const uint32_t connection_number; ///< what callers know the connection by
  QUILL3::ClipInfo record;
};

/// Receives the server's name.
class OrvaConnObject::CBServerNameObject : public CBBaseObject {
public:
  explicit CBServerNameObject (ARef<OrvaConnObject> connection)
      : CBBaseObject (std::move (connection), Waiter::one) {}

  void cb_name (AString given);
  QUILL3::callback::computername name_callback () {
    return AMethod::bind (this, &CBServerNameObject::cb_name);
  }

  AString name;
};

/// Receives what the server is set to, as the wire's numbers.
class OrvaConnObject::CBVideoStandardObject : public CBBaseObject {
public:
  explicit CBVideoStandardObject (ARef<OrvaConnObject> connection)
      : CBBaseObject (std::move (connection), Waiter::one) {}

  void cb_standard (uint32_t given_standard, uint32_t given_rate, uint32_t given_resolution);
  QUILL3::callback::video_standard standard_callback () {
    return AMethod::bind (this, &CBVideoStandardObject::cb_standard);
  }

  uint32_t standard = 0;
  uint32_t rate = 0;
  uint32_t resolution = 0;
};

/// Receives the state of the storage.
class OrvaConnObject::CBDiskSpaceObject : public CBBaseObject {
public:
  explicit CBDiskSpaceObject (ARef<OrvaConnObject> connection)
      : CBBaseObject (std::move (connection), Waiter::one) {}

  void cb_disk (uint64_t given_total, uint64_t given_available, uint32_t given_field_size);
  QUILL3::callback::disk_usage disk_callback () { return AMethod::bind (this, &CBDiskSpaceObject::cb_disk); }

  uint64_t total = 0;
  uint64_t available = 0;
  uint32_t field_size = 0;
};

template <class T, class... Arguments>
OrvaConnObject::CBRef<T> OrvaConnObject::make_query (const ARef<OrvaConnObject> &self,
                                                     Arguments... arguments) {
  return CBRef<T> (new T (self, arguments...));
}
