/**
 * @file orva/store.hpp
 * Key-value stores. The server keeps their keys, and any number of processes may use them.
 */
#ifndef ORVA_STORE_HPP
#define ORVA_STORE_HPP

#include "call.hpp"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orva {

/** A change of a key. */
struct StoreChange {
  std::string key;
  std::optional<std::string> value; /**< no value when the key was erased */
};

namespace detail {

/** An open store. The destructor of the last object that uses it closes it. */
class OpenStore {
public:
  OpenStore (std::shared_ptr<Helpers> helpers, std::uint32_t handle)
      : helpers_ (std::move (helpers)), handle_ (handle) {}
  ~OpenStore () { close (); }
  OpenStore (const OpenStore &) = delete;
  OpenStore &operator= (const OpenStore &) = delete;

  std::uint32_t handle () const { return handle_; }

  /**
   * Closes the store and waits up to 13 s. The C function takes up to 12 s, or never returns when the server
   * does not answer. Then its helper thread stays too. When the system cannot start a helper thread, this
   * calls the C function directly and waits until it returns.
   */
  void close () {
    const std::uint32_t handle = handle_.exchange (0);
    if (handle == 0)
      return;
    const auto done = std::make_shared<std::promise<void>> ();
    const bool running = helpers_->run ([done, handle] {
      orva_close_key_value_store (handle);
      done->set_value ();
    });
    if (running)
      done->get_future ().wait_for (std::chrono::seconds (13));
    else
      orva_close_key_value_store (handle);
  }

private:
  const std::shared_ptr<Helpers> helpers_;
  std::atomic<std::uint32_t> handle_;
};

struct StoreData {
  Context context;
  std::shared_ptr<OpenStore> store;
};

/** How long one call of the library waits, in milliseconds. A wait notices within this time that another
 * thread has cancelled it or has closed the server. */
inline constexpr std::uint32_t store_look_ms = 10;

/** Waits with many short calls. @param look takes a time in milliseconds and returns a result code */
template <class Look>
result<void> wait_in_store (const Context &context, Look look) {
  return look_until<void> (context, [&] () -> std::optional<result<void>> {
    const Limit limit = context.limit ();
    const std::uint32_t code = look (limit < std::chrono::milliseconds (store_look_ms) ? 0 : store_look_ms);
    if (code == ORVA_TIMEOUT)
      return {};
    return code == ORVA_OK ? result<void> () : result<void> (failure_of (code));
  });
}

} // namespace detail

/**
 * A store. It gives access to the keys with one prefix in a folder, which is a metadata database of the
 * server. `server.store ("folder", orva::StoreMode::read_write)` opens it. The destructor of its last copy
 * closes it. Changes are sent in the background, again and again until the server has accepted them. A store
 * continues to work after the loss of a link. Destroy it before its server: without the server its operations
 * fail, and changes that are not sent yet may be lost.
 *
 * Closing a store waits up to 2 s until all changes have been sent. Altogether it takes 13 s at most, unless
 * the system cannot start a thread.
 */
template <class Form>
class StoreControl : public Operations<StoreControl, Form, detail::StoreData> {
  using Base = Operations<StoreControl, Form, detail::StoreData>;

public:
  using Base::Base;
  template <class T>
  using of = typename Base::template of<T>;

  /** Sets a key. Returns at once. flush() waits until the server has accepted it. */
  of<void> set (std::string_view key, std::string_view value) const {
    const auto operation = [store = this->data_.store] (std::uint32_t, const orva_char *name,
                                                        const orva_char *text) {
      return orva_kvstore_set (store->handle (), name, text);
    };
    return this->template ask_library<void> (operation, key, value);
  }
  /** Erases a key. Returns at once. flush() waits until the server has accepted it. */
  of<void> erase (std::string_view key) const {
    const auto operation = [store = this->data_.store] (std::uint32_t, const orva_char *name) {
      return orva_kvstore_erase (store->handle (), name);
    };
    return this->template ask_library<void> (operation, key);
  }
  /** Waits until the server has accepted all changes. After Kind::timed_out they are still sent. */
  of<void> flush () const {
    return this->template deliver<void> ([data = this->data_] {
      return detail::wait_in_store (data.context, [&] (std::uint32_t time) {
        return orva_kvstore_flush (data.store->handle (), time);
      });
    });
  }
  /** Waits until the folder has been downloaded. Then next_change() returns each of its keys. */
  of<void> wait_loaded () const {
    return this->template deliver<void> ([data = this->data_] {
      return detail::wait_in_store (data.context, [&] (std::uint32_t time) {
        return orva_kvstore_wait_scan (data.store->handle (), time);
      });
    });
  }
  /**
   * Waits for a change and takes it. Returns no value when the limit has passed, which is 10 s unless another
   * one is set. `within (no_limit)` waits for ever. `within (0ms)` does not wait. Each change goes to one of
   * the waiting threads.
   */
  of<std::optional<StoreChange>> next_change () const {
    using Change = std::optional<StoreChange>;
    return this->template deliver<Change> ([data = this->data_] () -> result<Change> { return take (data); });
  }
  /** Closes the store for all copies of this object. */
  void close () const { this->data_.store->close (); }

private:
  static result<std::optional<StoreChange>> take (const detail::StoreData &data) {
    StoreChange change;
    std::uint32_t type = 0;
    const auto look = [&] (std::uint32_t time) {
      std::string key;
      return detail::take_text (
          [&] (OrvaStringBuffer name) {
            return detail::take_text (
                [&] (OrvaStringBuffer text) {
                  return orva_kvstore_get_change (data.store->handle (), time, &type, name, text);
                },
                change.value.emplace ());
          },
          change.key);
    };
    const result<void> found = detail::wait_in_store (data.context, look);
    if (!found && found.failure ().kind == Kind::timed_out)
      return std::optional<StoreChange> ();
    if (!found)
      return found.failure ();
    if (type == ORVA_STORE_CHANGE_ERASE)
      change.value.reset ();
    return std::optional<StoreChange> (std::move (change));
  }
};

} // namespace orva

#endif
