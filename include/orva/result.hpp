/**
 * @file orva/result.hpp
 * Failures of operations: their kinds, an exception for each kind, and a result that is a value or a failure.
 */
#ifndef ORVA_RESULT_HPP
#define ORVA_RESULT_HPP

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

namespace orva {

/** Why an operation has failed. */
enum class Kind {
  invalid,       /**< a bad argument, or a closed object; nothing was sent */
  not_connected, /**< the link was down before the operation; nothing was sent */
  link_lost,     /**< the link went down before the answer; the outcome is unknown */
  refused,       /**< the server refused it; the text is the server's own */
  timed_out,     /**< the limit passed before the answer; the outcome is unknown */
  cancelled,     /**< another thread cancelled the operation; the outcome is unknown */
  unsupported,   /**< this version of the library cannot do it; nothing was sent */
  internal       /**< no memory, no thread, or a fault in the library; the outcome is unknown */
};

/** A failure as a value: its kind, and a text for people. */
struct Failure {
  Kind kind;
  std::string text;

  /** True when the server may have carried out the operation. The library never repeats it by itself. */
  bool outcome_unknown () const noexcept {
    return kind == Kind::link_lost || kind == Kind::timed_out || kind == Kind::cancelled ||
           kind == Kind::internal;
  }

  /** Throws the exception that belongs to the kind. */
  [[noreturn]] void raise () const;
};

/** The base class of the exceptions for all failures. */
class error : public std::runtime_error {
public:
  explicit error (const Failure &failure) : std::runtime_error (failure.text), kind_ (failure.kind) {}
  Kind kind () const noexcept { return kind_; }
  Failure failure () const { return {kind_, what ()}; }
  /** The same as Failure::outcome_unknown(). */
  bool outcome_unknown () const { return failure ().outcome_unknown (); }

private:
  Kind kind_;
};

/** The exception of Kind::invalid. */
class invalid : public error {
public:
  explicit invalid (const std::string &text) : error ({Kind::invalid, text}) {}
};
/** The exception of Kind::not_connected. */
class not_connected : public error {
public:
  explicit not_connected (const std::string &text) : error ({Kind::not_connected, text}) {}
};
/** The exception of Kind::link_lost. */
class link_lost : public error {
public:
  explicit link_lost (const std::string &text) : error ({Kind::link_lost, text}) {}
};
/** The exception of Kind::refused: what() is the server's own text. */
class refused : public error {
public:
  explicit refused (const std::string &text) : error ({Kind::refused, text}) {}
};
/** The exception of Kind::timed_out. */
class timed_out : public error {
public:
  explicit timed_out (const std::string &text) : error ({Kind::timed_out, text}) {}
};
/** The exception of Kind::cancelled. */
class cancelled : public error {
public:
  explicit cancelled (const std::string &text) : error ({Kind::cancelled, text}) {}
};
/** The exception of Kind::unsupported. */
class unsupported : public error {
public:
  explicit unsupported (const std::string &text) : error ({Kind::unsupported, text}) {}
};
/** The exception of Kind::internal. */
class internal : public error {
public:
  explicit internal (const std::string &text) : error ({Kind::internal, text}) {}
};

inline void Failure::raise () const {
  switch (kind) {
  case Kind::invalid:
    throw invalid (text);
  case Kind::not_connected:
    throw not_connected (text);
  case Kind::link_lost:
    throw link_lost (text);
  case Kind::refused:
    throw refused (text);
  case Kind::timed_out:
    throw timed_out (text);
  case Kind::cancelled:
    throw cancelled (text);
  case Kind::unsupported:
    throw unsupported (text);
  case Kind::internal:
    break;
  }
  throw internal (text);
}

/**
 * The result of an operation: a value, or a failure.
 *
 *     if (const auto name = server.nothrow ().name ())
 *       print (*name);
 *     else
 *       print (name.failure ().text);
 */
template <class T>
class [[nodiscard]] result {
public:
  result (T value) : content_ (std::in_place_index<0>, std::move (value)) {}
  result (Failure failure) : content_ (std::in_place_index<1>, std::move (failure)) {}

  bool has_value () const noexcept { return content_.index () == 0; }
  explicit operator bool () const noexcept { return has_value (); }

  /** The value. @throws the exception of the failure when there is no value */
  const T &value () const & {
    check ();
    return *std::get_if<0> (&content_);
  }
  T &value () & {
    check ();
    return *std::get_if<0> (&content_);
  }
  T &&value () && {
    check ();
    return std::move (*std::get_if<0> (&content_));
  }
  const T &operator* () const & { return value (); }
  T &operator* () & { return value (); }
  T &&operator* () && { return std::move (*this).value (); }
  const T *operator->() const { return &value (); }
  T *operator->() { return &value (); }

  /** The value, or `otherwise` for a failure. */
  T value_or (T otherwise) const & { return has_value () ? value () : std::move (otherwise); }

  /** The failure. @throws std::bad_variant_access when there is a value */
  const Failure &failure () const { return std::get<1> (content_); }

private:
  void check () const {
    if (const Failure *const failed = std::get_if<1> (&content_))
      failed->raise ();
  }

  std::variant<T, Failure> content_;
};

/** The result of an operation without a value: success, or a failure. */
template <>
class [[nodiscard]] result<void> {
public:
  result () = default;
  result (Failure failure) : failure_ (std::move (failure)) {}

  bool has_value () const noexcept { return !failure_; }
  explicit operator bool () const noexcept { return has_value (); }

  /** @throws the exception of the failure, if there is one */
  void value () const {
    if (failure_)
      failure_->raise ();
  }
  /** The failure. @throws std::bad_optional_access after success */
  const Failure &failure () const { return failure_.value (); }

private:
  std::optional<Failure> failure_;
};

} // namespace orva

#endif
