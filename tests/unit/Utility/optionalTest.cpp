#include <gtest/gtest.h>

#include <array>
#include <compare>
#include <concepts>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "Utility/optional.h"

namespace lum {
namespace {

static_assert(!optional<int>().has_value());
static_assert(!optional<int>(nullopt));
static_assert(optional<int>(3).value() == 3);
static_assert(*optional<int>(3) == 3);
static_assert(optional<int>().value_or(4) == 4);
static_assert(optional<int>(3).value_or(4) == 3);
static_assert(optional<int>() == nullopt);
static_assert(optional<int>(3) != nullopt);
static_assert(optional<int>(3) == 3);

static_assert(sizeof(nullopt_t) == 1);
static_assert(!std::is_default_constructible_v<nullopt_t>);
static_assert(std::is_nothrow_move_constructible_v<optional<std::string>>);
static_assert(std::is_nothrow_move_assignable_v<optional<std::string>>);

// The traits say what compiles: each is that of the value.
using Unique = std::unique_ptr<int>;
static_assert(!std::is_copy_constructible_v<optional<Unique>>);
static_assert(!std::is_copy_assignable_v<optional<Unique>>);
static_assert(std::is_move_constructible_v<optional<Unique>>);
static_assert(std::is_move_assignable_v<optional<Unique>>);
static_assert(std::is_swappable_v<optional<Unique>>);
static_assert(!std::is_copy_constructible_v<optional<std::mutex>>);
static_assert(!std::is_move_constructible_v<optional<std::mutex>>);
static_assert(!std::is_copy_assignable_v<optional<std::mutex>>);
static_assert(!std::is_move_assignable_v<optional<std::mutex>>);
static_assert(!std::is_swappable_v<optional<std::mutex>>);
struct NotAssignable {
  int const number;
};
static_assert(std::is_copy_constructible_v<optional<NotAssignable>>);
static_assert(!std::is_copy_assignable_v<optional<NotAssignable>>);
static_assert(!std::is_move_assignable_v<optional<NotAssignable>>);
struct OnlyCopied {
  OnlyCopied(OnlyCopied const&) = default;
  OnlyCopied& operator=(OnlyCopied const&) = default;
};
static_assert(std::is_move_constructible_v<optional<OnlyCopied>>, "by copying");

// What converts to what, implicitly and explicitly, as for the standard optional.
template <template <class> class Optional>
constexpr std::array conversions = {
    std::is_convertible_v<Optional<int>, Optional<long>>,
    std::is_convertible_v<Optional<int> const&, Optional<double>>,
    std::is_convertible_v<Optional<char const*>, Optional<std::string>>,
    std::is_convertible_v<Optional<std::string_view>, Optional<std::string>>,
    std::is_constructible_v<Optional<std::string>, Optional<std::string_view>>,
    std::is_constructible_v<Optional<int>, Optional<std::string>>,
    std::is_convertible_v<Optional<int*>, Optional<Unique>>,
    std::is_constructible_v<Optional<Unique>, Optional<int*>>,
    std::is_constructible_v<Optional<Unique>, Optional<Unique> const&>,
    std::is_assignable_v<Optional<Unique>&, Optional<int*>>,
    std::is_assignable_v<Optional<Unique>&, Optional<Unique>>,
    std::is_assignable_v<Optional<Unique>&, Optional<Unique> const&>,
    std::is_assignable_v<Optional<std::shared_ptr<int>>&, Optional<Unique>>,
    std::is_assignable_v<Optional<std::shared_ptr<int>>&, Optional<Unique> const&>,
    std::is_assignable_v<Optional<long>&, Optional<int>>,
    std::is_assignable_v<Optional<int>&, Optional<std::string>>,
    std::is_convertible_v<Optional<int>, Optional<Optional<int>>>,
    std::is_convertible_v<Optional<int>, Optional<Optional<long>>>,
    std::is_constructible_v<Optional<std::mutex>, Optional<int>>,
};
static_assert(conversions<optional> == conversions<std::optional>);

// What compares with what.
template <class A, class B>
concept Equal = requires(A const& i_a, B const& i_b) {
  i_a == i_b, i_a != i_b, i_b == i_a, i_b != i_a;
};
template <class A, class B>
concept Less = requires(A const& i_a, B const& i_b) {
  i_a<i_b, i_a >= i_b, i_b> i_a, i_b <= i_a;
};
struct Incomparable {};
struct OnlyEqual {
  bool operator==(OnlyEqual const&) const = default;
};
template <template <class> class Optional>
constexpr std::array comparisons = {
    Equal<Optional<int>, Optional<double>>,
    Less<Optional<int>, Optional<double>>,
    Equal<Optional<int>, double>,
    Less<Optional<int>, double>,
    Equal<Optional<std::string>, char const*>,
    Less<Optional<std::string>, char const*>,
    Equal<Optional<Incomparable>, Incomparable>,
    Equal<Optional<Incomparable>, Optional<Incomparable>>,
    Equal<Optional<OnlyEqual>, OnlyEqual>,
    Less<Optional<OnlyEqual>, OnlyEqual>,
    Less<Optional<OnlyEqual>, Optional<OnlyEqual>>,
    Equal<Optional<int>, std::string>,
    Less<Optional<int>, std::string>,
    Equal<Optional<Optional<int>>, Optional<int>>,
    std::three_way_comparable_with<Optional<int>, Optional<long>>,
    std::three_way_comparable_with<Optional<OnlyEqual>, Optional<OnlyEqual>>,
};
static_assert(comparisons<optional> == comparisons<std::optional>);
static_assert(Equal<optional<Incomparable>, nullopt_t> && Less<optional<Incomparable>, nullopt_t>);
static_assert(std::same_as<decltype(optional<double>(1.0) <=> optional<double>(2.0)), std::partial_ordering>);
static_assert(std::same_as<decltype(optional<int>(1) <=> 2), std::strong_ordering>);
static_assert(std::same_as<decltype(optional<double>(1.0) <=> nullopt), std::strong_ordering>);

constexpr int MakeThroughEveryOperation() {
  optional<int> value;
  value = 3;
  optional<int> copy = value;
  copy.emplace(4);
  value.swap(copy);
  copy = nullopt;
  copy = value;
  value.reset();
  return copy.value() + value.value_or(10);
}
static_assert(MakeThroughEveryOperation() == 14, "usable in constant expressions");

TEST(Optional, IsEmptyByDefaultAndFromTheTag) {
  EXPECT_FALSE(optional<std::string>().has_value());
  EXPECT_FALSE(optional<std::string>(nullopt).has_value());
  optional<std::string> const braces = {};
  EXPECT_FALSE(braces);
}

TEST(Optional, ThrowsForTheValueOfAnEmptyOne) {
  optional<std::string> empty;
  EXPECT_THROW(empty.value(), std::bad_optional_access);
  EXPECT_THROW(std::as_const(empty).value(), std::bad_optional_access);
  EXPECT_THROW(optional<std::string>().value(), std::bad_optional_access);
}

TEST(Optional, GivesAccessToItsValue) {
  optional<std::string> text("abc");
  EXPECT_EQ(text->size(), 3U);
  *text += 'd';
  EXPECT_EQ(text.value(), "abcd");
  EXPECT_EQ(std::move(text).value(), "abcd");
}

TEST(Optional, MovesItsValueOutOfATemporary) {
  auto const counted = std::make_shared<int>(1);
  optional<std::shared_ptr<int>> full(counted);
  std::shared_ptr<int> const taken = *std::move(full);
  EXPECT_EQ(counted.use_count(), 2) << "the value was moved, not copied";
  EXPECT_EQ(optional<std::shared_ptr<int>>(counted).value_or(nullptr), counted);
  EXPECT_EQ(optional<std::shared_ptr<int>>().value_or(counted), counted);
}

TEST(Optional, ComparesStatesAndValues) {
  using O = optional<std::string>;
  EXPECT_TRUE(O() == O());
  EXPECT_FALSE(O("a") == O());
  EXPECT_FALSE(O() == O("a"));
  EXPECT_TRUE(O("a") == O("a"));
  EXPECT_FALSE(O("a") == O("b"));
  EXPECT_FALSE(O() == std::string("a"));
  EXPECT_TRUE(O("a") == std::string("a"));
  EXPECT_FALSE(O("a") == std::string("b"));
  EXPECT_FALSE(O("a") == nullopt);
}

TEST(Optional, AssignmentOfEmptyBracesEmptiesIt) {
  optional<int> number(3);
  number = {};
  EXPECT_FALSE(number.has_value());
  optional<double> real(3.5);
  real = {};
  EXPECT_FALSE(real.has_value());
  optional<std::string> text(std::string("text"));
  text = {};
  EXPECT_FALSE(text.has_value());
}

TEST(Optional, ConvertsFromWhatItsValueConvertsFrom) {
  optional<std::string> text = "abc";
  EXPECT_EQ(text.value(), "abc");
  text = "other";
  EXPECT_EQ(text.value(), "other");
  optional<double> number(3);
  number = 4;
  EXPECT_EQ(number.value(), 4.0);
}

TEST(Optional, ConvertsFromAnotherOptionalByItsValue) {
  optional<int> const zero = 0;
  optional<int> const empty;
  optional<bool> flag = zero;
  ASSERT_TRUE(flag.has_value());
  EXPECT_FALSE(*flag) << "the value converts, not whether there is one";
  flag = empty;
  EXPECT_FALSE(flag.has_value());
  flag = optional<int>(2);
  EXPECT_TRUE(flag == true);
  EXPECT_FALSE(optional<bool>(empty).has_value());
  EXPECT_FALSE(optional<bool const>(empty).has_value());

  optional<double> number = zero;
  EXPECT_TRUE(number == 0.0);
  number = optional<float>(1.5F);
  EXPECT_TRUE(number == 1.5);
  double const* const address = &*number;
  number = optional<int>(4);
  EXPECT_EQ(&*number, address) << "assigned to the value that there was";
  EXPECT_TRUE(number == 4.0);
  number = empty;
  EXPECT_FALSE(number);
  number = empty;
  EXPECT_FALSE(number);
  EXPECT_FALSE(optional<double>(empty));
  EXPECT_FALSE(optional<double>(optional<int>()));
  number = 1.0;
  number = optional<int>();
  EXPECT_FALSE(number);
}

TEST(Optional, MovesTheValueOfAnotherOptional) {
  auto counted = std::make_unique<int>(3);
  int const* const address = counted.get();
  optional<std::unique_ptr<int>> unique(std::move(counted));
  optional<std::shared_ptr<int>> shared = std::move(unique);
  ASSERT_TRUE(shared);
  EXPECT_EQ(shared->get(), address);
  // NOLINTBEGIN(bugprone-use-after-move): the moved-from value stays
  EXPECT_TRUE(unique.has_value());
  EXPECT_EQ(*unique, nullptr);
  unique = std::make_unique<int>(4);
  shared = std::move(unique);
  EXPECT_EQ(**shared, 4);
  EXPECT_EQ(*unique, nullptr);
  // NOLINTEND(bugprone-use-after-move)
  std::string const text = "a text too long to be stored in place";
  optional<std::string> const kept = text;
  optional<std::string_view> const view = text;
  optional<std::string> copy(view);
  EXPECT_EQ(copy.value(), text);
  copy = kept;
  EXPECT_EQ(kept.value(), text);
}

struct Anything {
  Anything() = default;
  template <class U>
  requires(!std::same_as<std::remove_cvref_t<U>, Anything>) Anything(U const&) : is_converted(true) {}
  bool is_converted = false;
};

TEST(Optional, HoldsAValueThatConvertsFromAnything) {
  optional<Anything> const value = optional<int>();
  ASSERT_TRUE(value.has_value()) << "made from the optional, as the standard one";
  EXPECT_TRUE(value->is_converted);
  optional<Anything> const copy = value;
  EXPECT_TRUE(copy.has_value());
}

TEST(Optional, NestsInAnother) {
  optional<int> const empty;
  optional<optional<int>> const outer = empty;
  ASSERT_TRUE(outer.has_value());
  EXPECT_FALSE(outer->has_value());
  EXPECT_FALSE(outer == nullopt);
  EXPECT_FALSE(outer == empty) << "compared as two optionals: one has a value";
  EXPECT_EQ(std::optional<std::optional<int>>(std::in_place) == std::optional<int>(), outer == empty);
}

// Every comparison of two values, with the standard optional as the model.
template <class A, class B>
std::array<bool, 12> CompareAll(A const& i_a, B const& i_b) {
  return {i_a == i_b, i_a != i_b, i_a<i_b, i_a <= i_b, i_a> i_b, i_a >= i_b,
          i_b == i_a, i_b != i_a, i_b<i_a, i_b <= i_a, i_b> i_a, i_b >= i_a};
}

TEST(Optional, ComparesLikeTheStandardOne) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (double const a : {1.0, 2.0, nan}) {
    for (float const b : {1.0F, 2.0F, static_cast<float>(nan)}) {
      using O = optional<double>;
      using P = optional<float>;
      using S = std::optional<double>;
      using T = std::optional<float>;
      EXPECT_EQ(CompareAll(O(a), P(b)), CompareAll(S(a), T(b))) << a << ' ' << b;
      EXPECT_EQ(CompareAll(O(a), P()), CompareAll(S(a), T())) << a;
      EXPECT_EQ(CompareAll(O(), P(b)), CompareAll(S(), T(b))) << b;
      EXPECT_EQ(CompareAll(O(a), b), CompareAll(S(a), b)) << a << ' ' << b;
      EXPECT_EQ(CompareAll(O(), b), CompareAll(S(), b)) << b;
      EXPECT_EQ(O(a) <=> P(b), S(a) <=> T(b)) << a << ' ' << b;
      EXPECT_EQ(O(a) <=> b, S(a) <=> b) << a << ' ' << b;
      EXPECT_EQ(O() <=> b, S() <=> b) << b;
      EXPECT_EQ(b <=> O(a), b <=> S(a)) << a << ' ' << b;
    }
    EXPECT_EQ(CompareAll(optional<double>(a), nullopt), CompareAll(std::optional<double>(a), std::nullopt));
  }
  EXPECT_EQ(CompareAll(optional<double>(), optional<int>()),
            CompareAll(std::optional<double>(), std::optional<int>()));
  EXPECT_EQ(CompareAll(optional<double>(), nullopt), CompareAll(std::optional<double>(), std::nullopt));
  EXPECT_TRUE((optional<int>() <=> optional<int>()) == 0);
  EXPECT_TRUE((optional<int>(1) <=> optional<int>()) > 0);
  EXPECT_TRUE((optional<int>() <=> optional<int>(1)) < 0);
}

// Unordered numbers in the way of older libraries, without <=>: each comparison must be the value's own.
struct Half {
  double number;
  friend bool operator==(Half i_a, Half i_b) { return i_a.number == i_b.number; }
  friend bool operator!=(Half i_a, Half i_b) { return i_a.number != i_b.number; }
  friend bool operator<(Half i_a, Half i_b) { return i_a.number < i_b.number; }
  friend bool operator<=(Half i_a, Half i_b) { return i_a.number <= i_b.number; }
  friend bool operator>(Half i_a, Half i_b) { return i_a.number > i_b.number; }
  friend bool operator>=(Half i_a, Half i_b) { return i_a.number >= i_b.number; }
};

TEST(Optional, ComparesValuesByTheirOwnOperators) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (double const a : {1.0, 2.0, nan}) {
    for (double const b : {1.0, 2.0, nan}) {
      EXPECT_EQ(CompareAll(optional<Half>(Half{a}), optional<Half>(Half{b})), CompareAll(a, b));
      EXPECT_EQ(CompareAll(optional<Half>(Half{a}), Half{b}), CompareAll(a, b));
    }
  }
}

TEST(Optional, BuildsItsValueInPlace) {
  optional<std::string> const text(std::in_place, 3U, 'x');
  ASSERT_TRUE(text.has_value());
  EXPECT_EQ(*text, "xxx");
}

TEST(Optional, AssignmentOfAValueMakesNoOtherValue) {
  struct Counted {
    explicit Counted(int& io_made) : mp_made(&io_made) {}
    Counted(Counted const& i_other) : mp_made(i_other.mp_made) { ++*mp_made; }
    Counted& operator=(Counted const&) = default;
    int* mp_made;
  };
  int made = 0;
  Counted const value(made);
  optional<Counted> target(value);
  EXPECT_EQ(made, 1);
  target = value;
  EXPECT_EQ(made, 1);
}

TEST(Optional, AssignmentAssignsToAnExistingValue) {
  optional<std::string> target("abc");
  std::string const* const address = &*target;
  target = optional<std::string>("x");
  EXPECT_EQ(&*target, address);
  EXPECT_EQ(*target, "x");
  target = optional<std::string>();
  EXPECT_FALSE(target);
  target = optional<std::string>();
  EXPECT_FALSE(target);
}

TEST(Optional, CopiesMovesAndAssigns) {
  optional<std::string> const full("abc");
  optional<std::string> copy = full;
  EXPECT_EQ(copy, full);
  optional<std::string> moved = std::move(copy);
  EXPECT_EQ(moved, full);
  moved = optional<std::string>();
  EXPECT_FALSE(moved);
  moved = full;
  EXPECT_EQ(moved.value(), "abc");
  moved = std::string("x");
  EXPECT_EQ(moved.value(), "x");
  optional<std::string>& alias = moved;
  moved = alias;
  EXPECT_EQ(moved.value(), "x");
  moved = nullopt;
  EXPECT_EQ(moved, nullopt);
  optional<std::string> const empty;
  copy = empty;
  EXPECT_FALSE(copy) << "emptied by an assignment";
  optional<std::string> const second = empty;
  EXPECT_FALSE(second);
  optional<std::string> const third = std::move(copy);
  EXPECT_FALSE(third);
  EXPECT_EQ(full.value(), "abc");
}

TEST(Optional, DestroysItsValueExactlyOnce) {
  auto const counted = std::make_shared<int>(1);
  {
    optional<std::shared_ptr<int>> first(counted);
    optional<std::shared_ptr<int>> second = first;
    EXPECT_EQ(counted.use_count(), 3);
    second.reset();
    EXPECT_EQ(counted.use_count(), 2);
    second.reset();
    first.emplace(counted);
    EXPECT_EQ(counted.use_count(), 2);
  }
  EXPECT_EQ(counted.use_count(), 1);
}

TEST(Optional, IsEmptyAfterAnEmplaceThatThrew) {
  struct Thrower {
    explicit Thrower(bool i_throws) {
      if (i_throws) throw std::runtime_error("no value");
    }
  };
  optional<Thrower> value(std::in_place, false);
  EXPECT_THROW(value.emplace(true), std::runtime_error);
  EXPECT_FALSE(value);
}

TEST(Optional, Swaps) {
  optional<std::string> full("abc");
  optional<std::string> empty;
  swap(full, empty);
  EXPECT_FALSE(full);
  EXPECT_EQ(empty.value(), "abc");
  optional<std::string> other("x");
  other.swap(empty);
  EXPECT_EQ(other.value(), "abc");
  EXPECT_EQ(empty.value(), "x");
}

}  // namespace
}  // namespace lum
