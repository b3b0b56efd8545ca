#pragma once

#include <compare>
#include <concepts>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>

#include "geometry/internal/RequireCpp20.h"

namespace lum {

/// Tag type of `nullopt`. It has no default constructor, so that `optional<T> o = {}` is not ambiguous.
struct nullopt_t {
  explicit constexpr nullopt_t(int) noexcept {}  ///< For `nullopt`. The number has no meaning.
};

/// The empty `optional`. Every translation unit has its own copy, which has no state.
constexpr nullopt_t nullopt{0};

template <class T>
class Lazy;
template <class T>
class optional;

namespace internal {

template <class T>
inline constexpr bool is_optional = false;
template <class T>
inline constexpr bool is_optional<optional<T>> = true;

/// Whether a bool would be made from whether an optional has a value.
template <class T, class U>
concept BoolFromOptional = std::same_as < std::remove_cv_t<T>,
bool > &&is_optional<std::remove_cvref_t<U>>;

/// Whether T can be made from an optional itself, which is then the value: its own value is not looked at.
template <class T, class Other>
concept MadeFromOptional = !BoolFromOptional<T, Other> &&
                           (std::is_constructible_v<T, Other&> || std::is_constructible_v<T, Other const&> ||
                            std::is_constructible_v<T, Other> || std::is_constructible_v<T, Other const> ||
                            std::is_convertible_v<Other&, T> || std::is_convertible_v<Other const&, T> ||
                            std::is_convertible_v<Other, T> || std::is_convertible_v<Other const, T>);

template <class T, class Other>
concept AssignedFromOptional = std::is_assignable_v<T&, Other&> || std::is_assignable_v<T&, Other const&> ||
    std::is_assignable_v<T&, Other> || std::is_assignable_v<T&, Other const>;

/// Whether an optional<T> can be made from the value of an optional<U>, which is passed on as Value.
template <class T, class U, class Value>
concept MadeFromValueOf =
    !std::same_as<T, U> && std::is_constructible_v<T, Value> && !MadeFromOptional<T, optional<U>>;

/// Whether the value of an optional<U> can be assigned to an optional<T>.
template <class T, class U, class Value>
concept AssignedFromValueOf =
    MadeFromValueOf<T, U, Value> && std::is_assignable_v<T&, Value> && !AssignedFromOptional<T, optional<U>>;

/// Whether U is a value, to be compared with the value of an optional.
template <class U>
concept NotOptional = !is_optional<U> && !std::same_as<U, nullopt_t>;

/// Whether the operator of a standard function object compares a T with a U.
template <class Operator, class T, class U>
concept Compares = std::is_invocable_r_v<bool, Operator, T const&, U const&>;

}  // namespace internal

/// A value of T or nothing, with the names of `std::optional`. Conversions and comparisons are those of
/// `std::optional`: an `optional<U>` converts and compares by its value, implicitly if U converts implicitly.
/// Copies, moves and assignments exist if those of T exist.
///
/// The value is stored in place; nothing is allocated. If an assignment of T throws, the optional keeps its
/// value in the state that the assignment left. If a construction of T throws, the optional is empty.
///
/// Thread safety: an optional must not be written while another thread uses it.
///
/// \tparam T  the value, an object type
template <class T>
class optional {
  template <class U>
  friend class Lazy;

 public:
  using value_type = T;  ///< The type of the value.

  constexpr optional() noexcept : m_nothing{} {}           ///< Empty.
  constexpr optional(nullopt_t) noexcept : m_nothing{} {}  ///< Empty.
  /// A value that is constructed from i_value. Implicit if i_value converts implicitly to T.
  template <class U = T>
  requires(!std::same_as<std::remove_cvref_t<U>, optional<T>> &&
           !std::same_as<std::remove_cvref_t<U>, std::in_place_t> && !internal::BoolFromOptional<T, U> &&
           std::is_constructible_v<T, U>) constexpr explicit(!std::is_convertible_v<U, T>)
      optional(U&& i_value)
      : m_value(std::forward<U>(i_value)), m_is_engaged(true) {}
  /// A value that is constructed from the arguments.
  template <class... Arguments>
  requires std::constructible_from<T, Arguments...>
  constexpr explicit optional(std::in_place_t, Arguments&&... i_arguments)
      : m_value(std::forward<Arguments>(i_arguments)...), m_is_engaged(true) {}

  /// Copies the value, if there is one.
  constexpr optional(optional const& i_other) requires std::is_copy_constructible_v<T>;
  /// Moves the value, if there is one. The other optional keeps its moved-from value.
  constexpr optional(optional&& i_other) noexcept(
      std::is_nothrow_move_constructible_v<T>) requires std::is_move_constructible_v<T>;
  ///@{
  /// Converts the value of another optional, if there is one.
  template <class U>
  requires internal::MadeFromValueOf<T, U, U const&>
  constexpr explicit(!std::is_convertible_v<U const&, T>) optional(optional<U> const& i_other);
  template <class U>
  requires internal::MadeFromValueOf<T, U, U>
  constexpr explicit(!std::is_convertible_v<U, T>) optional(optional<U>&& i_other);
  ///@}
  constexpr ~optional() { reset(); }

  constexpr optional& operator=(nullopt_t) noexcept;  ///< Destroys the value, if there is one.
  ///@{
  /// Assigns the value if both optionals have one; otherwise constructs or destroys it.
  constexpr optional& operator=(optional const& i_other) requires(
      std::is_copy_constructible_v<T>&& std::is_copy_assignable_v<T>);
  constexpr optional& operator=(optional&& i_other) noexcept(
      std::is_nothrow_move_constructible_v<T>&& std::is_nothrow_move_assignable_v<
          T>) requires(std::is_move_constructible_v<T>&& std::is_move_assignable_v<T>);
  template <class U>
  requires internal::AssignedFromValueOf<T, U, U const&>
  constexpr optional& operator=(optional<U> const& i_other);
  template <class U>
  requires internal::AssignedFromValueOf<T, U, U>
  constexpr optional& operator=(optional<U>&& i_other);
  ///@}
  /// Assigns or constructs the value. Does not take `{}`, even if T is a scalar: `o = {}` empties the
  /// optional.
  template <class U = T>
  requires(!std::same_as<std::remove_cvref_t<U>, optional<T>> && std::is_constructible_v<T, U> &&
           std::is_assignable_v<T&, U> &&
           !(std::is_scalar_v<T> && std::same_as<T, std::decay_t<U>>)) constexpr optional&
  operator=(U&& i_value) {
    Assign(std::forward<U>(i_value));
    return *this;
  }

  ///@{
  /// Whether there is a value.
  constexpr bool has_value() const noexcept { return m_is_engaged; }
  constexpr explicit operator bool() const noexcept { return m_is_engaged; }
  ///@}

  ///@{
  /// The value. Undefined behaviour for an empty optional.
  constexpr T& operator*() & noexcept { return m_value; }
  constexpr T const& operator*() const& noexcept { return m_value; }
  constexpr T&& operator*() && noexcept { return std::move(m_value); }
  constexpr T* operator->() noexcept { return std::addressof(m_value); }
  constexpr T const* operator->() const noexcept { return std::addressof(m_value); }
  ///@}

  ///@{
  /// The value. An empty optional throws `std::bad_optional_access`.
  constexpr T& value() &;
  constexpr T const& value() const&;
  constexpr T&& value() &&;
  ///@}

  /// A copy of the value, or `i_default` converted to T if there is none.
  template <class U>
  constexpr T value_or(U&& i_default) const&;
  /// The value, moved, or `i_default` converted to T if there is none.
  template <class U>
  constexpr T value_or(U&& i_default) &&;

  /// Destroys the value, if there is one, and constructs a new one from the arguments.
  template <class... Arguments>
  constexpr T& emplace(Arguments&&... i_arguments);
  constexpr void reset() noexcept;          ///< Destroys the value, if there is one.
  constexpr void swap(optional& io_other);  ///< Exchanges the two, by three moves.

 private:
  template <class U>
  constexpr void Assign(U&& i_value);
  // Assigns the value of an optional, which is passed on as Other is: by copy or by move.
  template <class Other>
  constexpr void AssignFrom(Other&& i_other);
  // Makes the value of an empty optional in place: what the function returns is neither copied nor moved.
  template <class Function>
  void EmplaceResultOf(Function const& i_function);

  struct Nothing {};
  union {
    Nothing m_nothing;
    T m_value;  // alive exactly while m_is_engaged is true
  };
  bool m_is_engaged = false;
};

template <class T>
constexpr optional<T>::optional(optional const& i_other) requires std::is_copy_constructible_v<T>
    : m_nothing{} {
  if (i_other.m_is_engaged) emplace(i_other.m_value);
}

template <class T>
constexpr optional<T>::optional(optional&& i_other) noexcept(
    std::is_nothrow_move_constructible_v<T>) requires std::is_move_constructible_v<T> : m_nothing{} {
  if (i_other.m_is_engaged) emplace(std::move(i_other.m_value));
}

/// \cond
template <class T>
template <class U>
requires internal::MadeFromValueOf<T, U, U const&>
constexpr optional<T>::optional(optional<U> const& i_other) : m_nothing{} {
  if (i_other.has_value()) emplace(*i_other);
}

template <class T>
template <class U>
requires internal::MadeFromValueOf<T, U, U>
constexpr optional<T>::optional(optional<U>&& i_other) : m_nothing{} {
  if (i_other.has_value()) emplace(*std::move(i_other));
}
/// \endcond

template <class T>
constexpr optional<T>& optional<T>::operator=(nullopt_t) noexcept {
  reset();
  return *this;
}

template <class T>
constexpr optional<T>& optional<T>::operator=(optional const& i_other) requires(
    std::is_copy_constructible_v<T>&& std::is_copy_assignable_v<T>) {
  AssignFrom(i_other);
  return *this;
}

template <class T>
constexpr optional<T>& optional<T>::operator=(optional&& i_other) noexcept(
    std::is_nothrow_move_constructible_v<T>&& std::is_nothrow_move_assignable_v<
        T>) requires(std::is_move_constructible_v<T>&& std::is_move_assignable_v<T>) {
  AssignFrom(std::move(i_other));
  return *this;
}

/// \cond
template <class T>
template <class U>
requires internal::AssignedFromValueOf<T, U, U const&>
constexpr optional<T>& optional<T>::operator=(optional<U> const& i_other) {
  AssignFrom(i_other);
  return *this;
}

template <class T>
template <class U>
requires internal::AssignedFromValueOf<T, U, U>
constexpr optional<T>& optional<T>::operator=(optional<U>&& i_other) {
  AssignFrom(std::move(i_other));
  return *this;
}
/// \endcond

template <class T>
constexpr T& optional<T>::value() & {
  if (!m_is_engaged) throw std::bad_optional_access();
  return m_value;
}

template <class T>
constexpr T const& optional<T>::value() const& {
  if (!m_is_engaged) throw std::bad_optional_access();
  return m_value;
}

template <class T>
constexpr T&& optional<T>::value() && {
  return std::move(value());
}

/// \cond
template <class T>
template <class U>
constexpr T optional<T>::value_or(U&& i_default) const& {
  return m_is_engaged ? m_value : static_cast<T>(std::forward<U>(i_default));
}

template <class T>
template <class U>
constexpr T optional<T>::value_or(U&& i_default) && {
  return m_is_engaged ? std::move(m_value) : static_cast<T>(std::forward<U>(i_default));
}
/// \endcond

template <class T>
template <class... Arguments>
constexpr T& optional<T>::emplace(Arguments&&... i_arguments) {
  reset();
  std::construct_at(std::addressof(m_value), std::forward<Arguments>(i_arguments)...);
  m_is_engaged = true;
  return m_value;
}

template <class T>
constexpr void optional<T>::reset() noexcept {
  if (m_is_engaged) {
    m_is_engaged = false;
    std::destroy_at(std::addressof(m_value));
  }
}

template <class T>
constexpr void optional<T>::swap(optional& io_other) {
  std::swap(*this, io_other);
}

template <class T>
template <class U>
constexpr void optional<T>::Assign(U&& i_value) {
  if (m_is_engaged) {
    m_value = std::forward<U>(i_value);
  } else {
    emplace(std::forward<U>(i_value));
  }
}

template <class T>
template <class Other>
constexpr void optional<T>::AssignFrom(Other&& i_other) {
  if (i_other.has_value()) {
    Assign(*std::forward<Other>(i_other));
  } else {
    reset();
  }
}

template <class T>
template <class Function>
void optional<T>::EmplaceResultOf(Function const& i_function) {
  // Without const, which T may have.
  ::new (const_cast<void*>(static_cast<void const*>(std::addressof(m_value)))) T(i_function());
  m_is_engaged = true;
}

/// Exchanges the two optionals, by three moves.
template <class T>
requires(std::is_move_constructible_v<T>&& std::is_move_assignable_v<T>) constexpr void swap(
    optional<T>& io_a, optional<T>& io_b) {
  io_a.swap(io_b);
}

///@{
/// Compares two optionals by the same operator of their values, if T and U have it. An empty optional equals
/// another and is less than a value.
template <class T, class U>
requires internal::Compares<std::equal_to<>, T, U>
constexpr bool operator==(optional<T> const& i_a, optional<U> const& i_b) {
  return i_a.has_value() == i_b.has_value() && (!i_a.has_value() || *i_a == *i_b);
}
template <class T, class U>
requires internal::Compares<std::not_equal_to<>, T, U>
constexpr bool operator!=(optional<T> const& i_a, optional<U> const& i_b) {
  return i_a.has_value() != i_b.has_value() || (i_a.has_value() && *i_a != *i_b);
}
template <class T, class U>
requires internal::Compares<std::less<>, T, U>
constexpr bool operator<(optional<T> const& i_a, optional<U> const& i_b) {
  return i_b.has_value() && (!i_a.has_value() || *i_a < *i_b);
}
template <class T, class U>
requires internal::Compares<std::less_equal<>, T, U>
constexpr bool operator<=(optional<T> const& i_a, optional<U> const& i_b) {
  return !i_a.has_value() || (i_b.has_value() && *i_a <= *i_b);
}
template <class T, class U>
requires internal::Compares<std::greater<>, T, U>
constexpr bool operator>(optional<T> const& i_a, optional<U> const& i_b) {
  return i_a.has_value() && (!i_b.has_value() || *i_a > *i_b);
}
template <class T, class U>
requires internal::Compares<std::greater_equal<>, T, U>
constexpr bool operator>=(optional<T> const& i_a, optional<U> const& i_b) {
  return !i_b.has_value() || (i_a.has_value() && *i_a >= *i_b);
}
template <class T, std::three_way_comparable_with<T> U>
constexpr std::compare_three_way_result_t<T, U> operator<=>(optional<T> const& i_a, optional<U> const& i_b) {
  if (i_a.has_value() && i_b.has_value()) return *i_a <=> *i_b;
  return i_a.has_value() <=> i_b.has_value();
}
///@}

///@{
/// Whether the optional is empty. It is never less than `nullopt`.
template <class T>
constexpr bool operator==(optional<T> const& i_a, nullopt_t) noexcept {
  return !i_a.has_value();
}
template <class T>
constexpr std::strong_ordering operator<=>(optional<T> const& i_a, nullopt_t) noexcept {
  return i_a.has_value() <=> false;
}
///@}

///@{
/// Compares an optional with a value, by the same operator of its own value. An empty optional is less than
/// any value.
template <class T, internal::NotOptional U>
requires internal::Compares<std::equal_to<>, T, U>
constexpr bool operator==(optional<T> const& i_a, U const& i_b) { return i_a.has_value() && *i_a == i_b; }
template <internal::NotOptional T, class U>
requires internal::Compares<std::equal_to<>, T, U>
constexpr bool operator==(T const& i_a, optional<U> const& i_b) { return i_b.has_value() && i_a == *i_b; }
template <class T, internal::NotOptional U>
requires internal::Compares<std::not_equal_to<>, T, U>
constexpr bool operator!=(optional<T> const& i_a, U const& i_b) { return !i_a.has_value() || *i_a != i_b; }
template <internal::NotOptional T, class U>
requires internal::Compares<std::not_equal_to<>, T, U>
constexpr bool operator!=(T const& i_a, optional<U> const& i_b) { return !i_b.has_value() || i_a != *i_b; }
template <class T, internal::NotOptional U>
requires internal::Compares<std::less<>, T, U>
constexpr bool operator<(optional<T> const& i_a, U const& i_b) { return !i_a.has_value() || *i_a < i_b; }
template <internal::NotOptional T, class U>
requires internal::Compares<std::less<>, T, U>
constexpr bool operator<(T const& i_a, optional<U> const& i_b) { return i_b.has_value() && i_a < *i_b; }
template <class T, internal::NotOptional U>
requires internal::Compares<std::less_equal<>, T, U>
constexpr bool operator<=(optional<T> const& i_a, U const& i_b) { return !i_a.has_value() || *i_a <= i_b; }
template <internal::NotOptional T, class U>
requires internal::Compares<std::less_equal<>, T, U>
constexpr bool operator<=(T const& i_a, optional<U> const& i_b) { return i_b.has_value() && i_a <= *i_b; }
template <class T, internal::NotOptional U>
requires internal::Compares<std::greater<>, T, U>
constexpr bool operator>(optional<T> const& i_a, U const& i_b) { return i_a.has_value() && *i_a > i_b; }
template <internal::NotOptional T, class U>
requires internal::Compares<std::greater<>, T, U>
constexpr bool operator>(T const& i_a, optional<U> const& i_b) { return !i_b.has_value() || i_a > *i_b; }
template <class T, internal::NotOptional U>
requires internal::Compares<std::greater_equal<>, T, U>
constexpr bool operator>=(optional<T> const& i_a, U const& i_b) { return i_a.has_value() && *i_a >= i_b; }
template <internal::NotOptional T, class U>
requires internal::Compares<std::greater_equal<>, T, U>
constexpr bool operator>=(T const& i_a, optional<U> const& i_b) { return !i_b.has_value() || i_a >= *i_b; }
template <class T, internal::NotOptional U>
requires std::three_way_comparable_with<U, T>
constexpr std::compare_three_way_result_t<T, U> operator<=>(optional<T> const& i_a, U const& i_b) {
  if (i_a.has_value()) return *i_a <=> i_b;
  return std::strong_ordering::less;
}
///@}

}  // namespace lum
