#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
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
