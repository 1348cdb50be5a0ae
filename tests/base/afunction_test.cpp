#include "base/amethod.h"
#include "support/assert_counter.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace {

using Number = AFunction<int (int)>;

int twice (int x) {
  return 2 * x;
}
int thrice (int x) {
  return 3 * x;
}
int scaled (uint32_t factor, int x) {
  return static_cast<int> (factor) * x;
}
int plus_pointed (void *value, int x) {
  return *static_cast<int *> (value) + x;
}
int all_pointed (void *first, AFunctionValue second, int x) {
  return *static_cast<int *> (first) * 100 + *static_cast<int *> (second.pointer ()) * 10 + x;
}

unsigned calls = 0;
void count_call () {
  ++calls;
}

Number of_kind (uint32_t kind) {
  Number f (&twice);
  std::memcpy (static_cast<void *> (&f), &kind, sizeof kind);
  return f;
}

struct First {
  virtual ~First () = default;
  virtual std::string name (const std::string &prefix) const { return prefix + "first"; }
  int first = 1;
};
struct Second {
  virtual ~Second () = default;
  int add (int x) { return second += x; }
  int second = 2;
};
struct Both : First, Second {
  std::string name (const std::string &prefix) const override { return prefix + "both"; }
  int own (int x) noexcept { return first * 100 + second * 10 + x; }
};

struct Copies {
  Copies () = default;
  Copies (const Copies &) { ++made; }
  Copies &operator= (const Copies &) = default;
  static inline int made = 0;
};
struct Target {
  void by_value (Copies) { ++calls; }
  void by_reference (const Copies &) { ++calls; }
};

} // namespace

TEST (AFunction, IsAPlainValue) {
  EXPECT_TRUE (std::is_trivially_copyable_v<Number>);
  EXPECT_TRUE (std::is_trivially_destructible_v<Number>);
  EXPECT_LE (sizeof (Number), 5 * sizeof (uint64_t));
  Number f = Number::with_number (&scaled, 6);
  alignas (Number) unsigned char bytes[sizeof f];
  std::memcpy (bytes, &f, sizeof f);
  Number copy;
  std::memcpy (static_cast<void *> (&copy), bytes, sizeof copy);
  EXPECT_EQ (copy.run (7), 42);
}

TEST (AFunction, RunsEachKind) {
  int five = 5;
  int three = 3;
  EXPECT_EQ (Number (&twice).run (4), 8);
  EXPECT_EQ (Number::plain (&thrice).run (4), 12);
  EXPECT_EQ (Number::with_number (&scaled, 10).run (4), 40);
  EXPECT_EQ (Number::with_pointer (&plus_pointed, &five).run (4), 9);
  EXPECT_EQ (Number::with_two (&all_pointed, &five, AFunctionValue (&three)).run (4), 534);
  EXPECT_FALSE (Number (&twice).is_empty ());
}

TEST (AFunction, AnEmptyOneDoesNothing) {
  AssertCounter failures;
  calls = 0;
  AFunction<void ()> ().run ();
  AFunction<void ()> (&count_call).run ();
  EXPECT_EQ (calls, 1u);
  EXPECT_EQ (Number ().run (9), 0);
  EXPECT_EQ (AFunction<std::string ()> ().run (), "");
  EXPECT_TRUE (Number ().is_empty ());
  EXPECT_EQ (failures.count (), 0u);
}

TEST (AFunction, ANullFunctionMakesAnEmptyOne) {
  int five = 5;
  EXPECT_TRUE (Number (nullptr).is_empty ());
  EXPECT_TRUE (Number::plain (nullptr).is_empty ());
  EXPECT_TRUE (Number::with_number (nullptr, 3).is_empty ());
  EXPECT_TRUE (Number::with_pointer (nullptr, &five).is_empty ());
  EXPECT_TRUE (Number::with_two (nullptr, &five, AFunctionValue (&five)).is_empty ());
  EXPECT_TRUE (Number::with_pointer (nullptr, &five) == Number ());
}

TEST (AFunction, EqualityLooksAtWhatTheKindUses) {
  int a = 1;
  int b = 1;
  AFunctionValue va (&a);
  AFunctionValue vb (&b);
  EXPECT_TRUE (Number () == Number ());
  EXPECT_FALSE (Number () == Number (&twice));
  EXPECT_TRUE (Number (&twice) == Number (&twice));
  EXPECT_TRUE (Number (&twice) != Number (&thrice));
  EXPECT_TRUE (Number::with_number (&scaled, 1) == Number::with_number (&scaled, 1));
  EXPECT_FALSE (Number::with_number (&scaled, 1) == Number::with_number (&scaled, 2));
  EXPECT_TRUE (Number::with_pointer (&plus_pointed, &a) == Number::with_pointer (&plus_pointed, &a));
  EXPECT_FALSE (Number::with_pointer (&plus_pointed, &a) == Number::with_pointer (&plus_pointed, &b));
  EXPECT_TRUE (Number::with_two (&all_pointed, &a, vb) == Number::with_two (&all_pointed, &a, vb));
  EXPECT_FALSE (Number::with_two (&all_pointed, &a, va) == Number::with_two (&all_pointed, &a, vb));
  EXPECT_FALSE (Number::with_two (&all_pointed, &a, vb) == Number::with_two (&all_pointed, &b, vb));
}

TEST (AFunction, OrderIsByKindThenFunctionThenValues) {
  int pair[2] = {1, 2};
  AFunctionValue v0 (&pair[0]);
  AFunctionValue v1 (&pair[1]);
  EXPECT_TRUE (Number () < Number ());
  EXPECT_TRUE (Number () < Number (&twice));
  EXPECT_FALSE (Number (&twice) < Number ());
  EXPECT_TRUE (Number (&twice) < Number::with_number (&scaled, 0));
  EXPECT_TRUE (Number::with_number (&scaled, 9) < Number::with_pointer (&plus_pointed, nullptr));
  EXPECT_FALSE (Number (&twice) < Number (&twice));
  EXPECT_NE (Number (&twice) < Number (&thrice), Number (&thrice) < Number (&twice));
  EXPECT_TRUE (Number::with_number (&scaled, 1) < Number::with_number (&scaled, 2));
  EXPECT_FALSE (Number::with_number (&scaled, 2) < Number::with_number (&scaled, 1));
  EXPECT_TRUE (Number::with_pointer (&plus_pointed, &pair[0]) <
               Number::with_pointer (&plus_pointed, &pair[1]));
  EXPECT_TRUE (Number::with_two (&all_pointed, &pair[0], v1) < Number::with_two (&all_pointed, &pair[1], v0));
  EXPECT_TRUE (Number::with_two (&all_pointed, &pair[0], v0) < Number::with_two (&all_pointed, &pair[0], v1));
  EXPECT_FALSE (Number::with_two (&all_pointed, &pair[0], v1) <
                Number::with_two (&all_pointed, &pair[0], v1));
}

TEST (AFunction, AnUnknownKindIsAnAssertion) {
  AssertCounter failures;
  EXPECT_EQ (of_kind (5).run (4), 0);
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_FALSE (of_kind (5) == of_kind (5));
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_TRUE (of_kind (5) < of_kind (5));
  EXPECT_EQ (failures.take (), 1u);
}

TEST (AFunction, AKindWithoutAFunctionIsAnAssertion) {
  AssertCounter failures;
  Number f;
  uint32_t kind = 1;
  std::memcpy (static_cast<void *> (&f), &kind, sizeof kind);
  EXPECT_EQ (f.run (4), 0);
  EXPECT_EQ (failures.take (), 1u);
}

TEST (AMethod, BindsAnyMember) {
  Both object;
  EXPECT_EQ (AMethod::bind (&object, &Both::own).run (5), 125);
  EXPECT_EQ (AMethod::bind (&object, &Second::add).run (5), 7);
  EXPECT_EQ (AMethod::bind (&object, &Both::add).run (1), 8);
  EXPECT_EQ (object.second, 8);
  const First &base = object;
  EXPECT_EQ (AMethod::bind (&base, &First::name).run ("the "), "the both");
}

TEST (AMethod, EqualForTheSameObjectAndMember) {
  Both one;
  Both two;
  EXPECT_TRUE (AMethod::bind (&one, &Both::own) == AMethod::bind (&one, &Both::own));
  EXPECT_FALSE (AMethod::bind (&one, &Both::own) == AMethod::bind (&two, &Both::own));
  EXPECT_FALSE (AMethod::bind (&one, &Second::add) == AMethod::bind (&one, &Both::own));
}

TEST (AMethod, ANullMemberMakesAnEmptyOne) {
  Both object;
  int (Both::*none) (int) = nullptr;
  EXPECT_TRUE (AMethod::bind (&object, none).is_empty ());
}

TEST (AMethod, ReferencesAreNotCopied) {
  Target target;
  Copies given;
  calls = 0;
  Copies::made = 0;
  AMethod::bind (&target, &Target::by_reference).run (given);
  EXPECT_EQ (Copies::made, 0);
  AMethod::bind (&target, &Target::by_value).run (given);
  EXPECT_GT (Copies::made, 0);
  EXPECT_EQ (calls, 2u);
}
