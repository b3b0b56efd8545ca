#pragma once

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace lum {

/// Tag type of `nullopt`. It has no default constructor, so that `optional<T> o = {}` is not ambiguous.
struct nullopt_t {
  explicit constexpr nullopt_t(int) noexcept {}  ///< For `nullopt`. The number has no meaning.
};

/// The empty `optional`. Every translation unit has its own copy, which has no state.
constexpr nullopt_t nullopt{0};

/// A value of T or nothing, with the names of `std::optional`.
///
/// The value is stored in place; nothing is allocated. If an assignment of T throws, the optional keeps its
/// value in the state that the assignment left. If a construction of T throws, the optional is empty.
///
/// Thread safety: an optional must not be written while another thread uses it.
///
/// \tparam T  the value, an object type
template <class T>
class optional {
 public:
  using value_type = T;  ///< The type of the value.

  constexpr optional() noexcept : m_nothing{} {}           ///< Empty.
  constexpr optional(nullopt_t) noexcept : m_nothing{} {}  ///< Empty.
  /// A value that is constructed from i_value. Implicit if i_value converts implicitly to T.
  template <class U = T>
  requires(!std::same_as<std::remove_cvref_t<U>, optional<T>> &&
           !std::same_as<std::remove_cvref_t<U>, std::in_place_t> &&
           std::constructible_from<T, U>) constexpr explicit(!std::is_convertible_v<U, T>)
      optional(U&& i_value)
      : m_value(std::forward<U>(i_value)), m_is_engaged(true) {}
  /// A value that is constructed from the arguments.
  template <class... Arguments>
  requires std::constructible_from<T, Arguments...>
  constexpr explicit optional(std::in_place_t, Arguments&&... i_arguments)
      : m_value(std::forward<Arguments>(i_arguments)...), m_is_engaged(true) {}

  constexpr optional(optional const& i_other);  ///< Copies the value, if there is one.
  /// Moves the value, if there is one. The other optional keeps its moved-from value.
  constexpr optional(optional&& i_other) noexcept(std::is_nothrow_move_constructible_v<T>);
  constexpr ~optional() { reset(); }

  constexpr optional& operator=(nullopt_t) noexcept;  ///< Destroys the value, if there is one.
  ///@{
  /// Assigns the value if both optionals have one; otherwise constructs or destroys it.
  constexpr optional& operator=(optional const& i_other);
  constexpr optional& operator=(optional&& i_other) noexcept(
      std::is_nothrow_move_constructible_v<T>&& std::is_nothrow_move_assignable_v<T>);
  ///@}
  /// Assigns or constructs the value. Does not take `{}`, even if T is a scalar: `o = {}` empties the
  /// optional.
  template <class U = T>
  requires(!std::same_as<std::remove_cvref_t<U>, optional<T>> && std::constructible_from<T, U> &&
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

  struct Nothing {};
  union {
    Nothing m_nothing;
    T m_value;  // alive exactly while m_is_engaged is true
  };
  bool m_is_engaged = false;
};

template <class T>
constexpr optional<T>::optional(optional const& i_other) : m_nothing{} {
  if (i_other.m_is_engaged) emplace(i_other.m_value);
}

template <class T>
constexpr optional<T>::optional(optional&& i_other) noexcept(std::is_nothrow_move_constructible_v<T>)
    : m_nothing{} {
  if (i_other.m_is_engaged) emplace(std::move(i_other.m_value));
}

template <class T>
constexpr optional<T>& optional<T>::operator=(nullopt_t) noexcept {
  reset();
  return *this;
}

template <class T>
constexpr optional<T>& optional<T>::operator=(optional const& i_other) {
  if (i_other.m_is_engaged) {
    Assign(i_other.m_value);
  } else {
    reset();
  }
  return *this;
}

template <class T>
constexpr optional<T>& optional<T>::operator=(optional&& i_other) noexcept(
    std::is_nothrow_move_constructible_v<T>&& std::is_nothrow_move_assignable_v<T>) {
  if (i_other.m_is_engaged) {
    Assign(std::move(i_other.m_value));
  } else {
    reset();
  }
  return *this;
}

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

/// Exchanges the two optionals, by three moves.
template <class T>
constexpr void swap(optional<T>& io_a, optional<T>& io_b) {
  io_a.swap(io_b);
}

/// Two optionals are equal when both are empty, or both hold a value and the values are equal.
template <class T>
constexpr bool operator==(optional<T> const& i_a, optional<T> const& i_b) {
  return i_a.has_value() == i_b.has_value() && (!i_a.has_value() || *i_a == *i_b);
}

/// Whether the optional is empty.
template <class T>
constexpr bool operator==(optional<T> const& i_a, nullopt_t) noexcept {
  return !i_a.has_value();
}

/// Whether the optional holds a value that equals i_value.
template <class T>
constexpr bool operator==(optional<T> const& i_a, T const& i_value) {
  return i_a.has_value() && *i_a == i_value;
}

}  // namespace lum
