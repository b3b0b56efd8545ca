#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
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
}

}  // namespace
}  // namespace lum
