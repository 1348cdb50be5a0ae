#include "base/aref.h"
#include "support/assert_counter.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

struct Payload {
  Payload () = default;
  explicit Payload (atomic_unsigned &count) : ends (&count) {}
  Payload (std::string text, std::unique_ptr<int> owned)
      : name (std::move (text)), number (std::move (owned)) {}
  Payload (const Payload &) = delete;
  Payload &operator= (const Payload &) = delete;
  ~Payload () {
    if (ends != nullptr)
      ++*ends;
  }
  atomic_unsigned *ends = nullptr;
  std::string name;
  std::unique_ptr<int> number;
};

using Ref = ARef<Payload>;

unsigned count_of (const Ref &ref) {
  return ref.holder ()->refcount.load ();
}

// Keeps its own end until it is asked for.
struct Deferred {
  explicit Deferred (atomic_unsigned &count) : ends (count) {}
  Deferred (const Deferred &) = delete;
  Deferred &operator= (const Deferred &) = delete;
  ~Deferred () { ++ends; }
  bool defer_destruction (void (*destroy) (void *), void *holder) {
    if (!wants_to_defer)
      return false;
    kept_destroy = destroy;
    kept_holder = holder;
    return true;
  }
  atomic_unsigned &ends;
  bool wants_to_defer = true;
  static inline void (*kept_destroy) (void *) = nullptr;
  static inline void *kept_holder = nullptr;
};

} // namespace

TEST (ARef, CreateGivesExactlyOneReference) {
  atomic_unsigned ends;
  {
    Ref ref = Ref::create (ends);
    EXPECT_FALSE (ref.is_null ());
    EXPECT_TRUE (static_cast<bool> (ref));
    EXPECT_EQ (count_of (ref), 1u);
    EXPECT_TRUE (ref.holder ()->increase_reference ());
    EXPECT_EQ (count_of (ref), 2u);
    ref.holder ()->decrease_reference ();
    EXPECT_EQ (ends.load (), 0u);
  }
  EXPECT_EQ (ends.load (), 1u);
}

TEST (ARef, CreateForwardsItsArguments) {
  Ref ref = Ref::create (std::string ("clip"), std::make_unique<int> (4));
  EXPECT_EQ (ref->name, "clip");
  EXPECT_EQ (*(*ref).number, 4);
  EXPECT_EQ (ref.get (), &*ref);
}

TEST (ARef, ThePayloadFollowsTheCount) {
  Ref ref = Ref::create ();
  auto *holder = reinterpret_cast<unsigned char *> (ref.holder ());
  EXPECT_EQ (reinterpret_cast<unsigned char *> (&ref.holder ()->refcount), holder);
  EXPECT_EQ (reinterpret_cast<unsigned char *> (ref.get ()), holder + 8);
}

TEST (ARef, EmptyReferences) {
  Ref a;
  Ref b (nullptr);
  EXPECT_TRUE (a.is_null ());
  EXPECT_EQ (a.get (), nullptr);
  EXPECT_EQ (a.holder (), nullptr);
  EXPECT_TRUE (a == b);
  Ref &same = a;
  a = same;
  EXPECT_TRUE (a.is_null ());
}

TEST (ARef, AssigningItsOwnHolderChangesNothing) {
  atomic_unsigned ends;
  Ref a = Ref::create (ends);
  Ref &same = a;
  a = same;
  EXPECT_EQ (count_of (a), 1u);
  a = std::move (same);
  EXPECT_EQ (count_of (a), 1u);
  Ref b = a;
  EXPECT_EQ (count_of (a), 2u);
  a = b;
  EXPECT_EQ (count_of (a), 2u);
  EXPECT_EQ (ends.load (), 0u);
}

TEST (ARef, CopiesShareAndTheLastOneDestroysOnce) {
  atomic_unsigned ends;
  Ref a = Ref::create (ends);
  Ref b = a;
  Ref other = Ref::create ();
  EXPECT_TRUE (a == b);
  EXPECT_FALSE (a == other);
  EXPECT_TRUE (a != other);
  a = nullptr;
  EXPECT_EQ (ends.load (), 0u);
  b = other;
  EXPECT_EQ (ends.load (), 1u);
  EXPECT_EQ (count_of (other), 2u);
}

TEST (ARef, MovingTakesNoCount) {
  atomic_unsigned ends;
  Ref a = Ref::create (ends);
  Ref b = std::move (a);
  EXPECT_TRUE (a.is_null ());
  EXPECT_EQ (count_of (b), 1u);
  Ref c = Ref::create ();
  c = std::move (b);
  EXPECT_TRUE (b.is_null ());
  EXPECT_EQ (count_of (c), 1u);
  EXPECT_EQ (ends.load (), 0u);
}

TEST (ARef, TheOldObjectGoesAfterTheNewOneIsInPlace) {
  struct Seen {
    explicit Seen (const ARef<Seen> &where) : place (where) {}
    Seen (const Seen &) = delete;
    Seen &operator= (const Seen &) = delete;
    ~Seen () { *was_other = place.get () != this; }
    const ARef<Seen> &place;
    bool *was_other = nullptr;
  };
  bool other_in_place[2]{};
  {
    ARef<Seen> place;
    place = ARef<Seen>::create (place);
    place->was_other = &other_in_place[0];
    ARef<Seen> second = ARef<Seen>::create (place);
    second->was_other = &other_in_place[1];
    place = second;
    EXPECT_TRUE (other_in_place[0]);
    second = nullptr;
    place = nullptr;
  }
  EXPECT_TRUE (other_in_place[1]);
}

TEST (ARefObject, ACountOfZeroIsNotRevived) {
  ARefObject<Payload> holder;
  EXPECT_EQ (holder.refcount.load (), 0u);
  EXPECT_FALSE (holder.increase_reference ());
  EXPECT_EQ (holder.refcount.load (), 0u);
}

TEST (ARef, TakingADyingObjectIsAnAssertionAndGivesNull) {
  Ref dying = Ref::create ();
  Ref full = Ref::create ();
  dying.holder ()->refcount.store (0);
  {
    AssertCounter failures;
    Ref copy = dying;
    EXPECT_TRUE (copy.is_null ());
    EXPECT_EQ (failures.take (), 1u);
    EXPECT_EQ (failures.last_line (), 15u);
    full = dying;
    EXPECT_TRUE (full.is_null ());
    EXPECT_EQ (failures.take (), 1u);
  }
  dying.holder ()->refcount.store (1);
}

TEST (ARef, AThrowingPayloadLeavesNothingBehind) {
  struct Throwing {
    Throwing () { throw 7; }
  };
  EXPECT_THROW (ARef<Throwing>::create (), int);
}

TEST (ARef, APayloadMayDeferItsEnd) {
  atomic_unsigned ends;
  ARef<Deferred>::create (ends);
  EXPECT_EQ (ends.load (), 0u);
  ASSERT_NE (Deferred::kept_holder, nullptr);
  Deferred::kept_destroy (Deferred::kept_holder);
  EXPECT_EQ (ends.load (), 1u);
  ARef<Deferred> at_once = ARef<Deferred>::create (ends);
  at_once->wants_to_defer = false;
  at_once = nullptr;
  EXPECT_EQ (ends.load (), 2u);
}

TEST (ARef, ThreadsCopyAndDropTheirOwnReferences) {
  atomic_unsigned ends;
  std::vector<std::thread> threads;
  {
    Ref shared = Ref::create (ends);
    for (int t = 0; t < 4; ++t)
      threads.emplace_back ([mine = shared] () mutable {
        for (int i = 0; i < 5000; ++i) {
          Ref copy = mine;
          Ref moved = std::move (mine);
          mine = copy;
        }
      });
    EXPECT_EQ (ends.load (), 0u);
  }
  for (std::thread &t : threads)
    t.join ();
  EXPECT_EQ (ends.load (), 1u);
}
